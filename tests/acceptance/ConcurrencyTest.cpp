// tests/acceptance/ConcurrencyTest.cpp
//
// A host with many threads: requests of several users, events from outside, starts and stops, all at once.
// What the requests do is told by other tests; here nothing may break, get lost or stay open.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/CommandShapes.h"
#include "acceptance/NativeMachine.h"
#include "acceptance/SampleRequests.h"
#include "acceptance/Schemes.h"
#include "notebook/Machine.h"
#include "notebook/Trace.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

namespace
{

constexpr unsigned kSeed = 19830512;
constexpr int kClients = 4;
constexpr int kRequestsOfEach = 60;
constexpr int kFirstAdded = 6;

// With whom the machine knows there is one who isn't logged on, and nobodies.
const std::string kUsers[] = {"alice", "bob", "ALICE", "carol", "nobody", ""};

// Set on the threads on which requests are sent.
thread_local bool isClient = false;

// One thread of the host: requests that make sense, requests that don't, and every so often a number in a
// file that all clients share.
class Client
{
public:
    Client(Host& host, unsigned number) : m_host(host), m_random(kSeed + number)
    {
        schemes::SetText(m_mark.file, "clients.ini");
        schemes::SetText(m_mark.section, "Clients");
        schemes::SetText(m_mark.item, "Client" + std::to_string(number));
        m_mark.fileType = 1;
    }

    void Run()
    {
        isClient = true;
        for (int round = 1; round <= kRequestsOfEach; ++round)
        {
            SendAny();
            if (round % 10 == 0)
            {
                m_mark.value = round;
                EXPECT_EQ(0, m_host.SendFor("alice", "PUT_INT_INTO_CONFIG", Payload(m_mark)).code);
            }
        }
    }

    // What the shared file says of this client.
    LONG LastMark() const
    {
        return m_host.SendFor("alice", "GET_INT_FROM_CONFIG", Payload(m_mark)).Number();
    }

private:
    template <class Table>
    const auto& AnyOf(const Table& table)
    {
        return table[std::uniform_int_distribution<std::size_t>(0, std::size(table) - 1)(m_random)];
    }

    void SendAny()
    {
        if (m_random() % 3 == 0)
        {
            const CommandShape& shape = AnyOf(kCommandShapes);
            std::vector<std::byte> payload(shape.payload);
            const bool isText = m_random() % 2 == 0;
            for (std::byte& byte : payload)
            {
                byte = static_cast<std::byte>(isText ? 'A' + m_random() % 26 : 1 + m_random() % 3);
            }
            Send(shape.name, payload);
            return;
        }
        const SampleRequest& request = AnyOf(m_samples);
        Send(request.command, request.payload);
    }

    void Send(const std::string& command, const std::vector<std::byte>& payload)
    {
        const LONG code = m_host.SendFor(AnyOf(kUsers), command, payload).code;
        EXPECT_TRUE(code == 0 || code == 1 || code == 5 || code == 6) << command << ' ' << code;
    }

    Host& m_host;
    std::mt19937 m_random;
    std::vector<SampleRequest> m_samples = SampleRequests(kFirstAdded);
    PM_Config_Data m_mark{};
};

bool IsWellFormed(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    for (std::string line; std::getline(stream, line);)
    {
        if (line.ends_with('\r'))
        {
            line.pop_back();
        }
        const bool isHeader = line.starts_with('[') && line.ends_with(']');
        if (line.find('\0') != std::string::npos ||
            (!line.empty() && !line.starts_with(';') && !isHeader && line.find('=') == std::string::npos))
        {
            ADD_FAILURE() << file << ": " << line;
            return false;
        }
    }
    return true;
}

class ManyThreads : public AcceptanceTest, public testing::WithParamInterface<DWORD>
{
protected:
    void SetUp() override
    {
        environment::Recreate(GetParam());
        simulated::Trace::Record(false);
        host.emplace();
    }

    // Repeats `work` on a thread of its own until `m_over`.
    template <class Work>
    std::thread Repeat(Work work)
    {
        return std::thread(
            [this, work]
            {
                while (!m_over)
                {
                    work();
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
                }
            });
    }

    // The next request from within an event, and now and then a stop from within a request's own event.
    void OnEvent()
    {
        if (isClient && ++m_events % 4 == 0)
        {
            EXPECT_EQ(0, host->Uninitialize());
        }
        const LONG code = host->SendFor("bob", "GET_ACTIVE_SCHEME").code;
        EXPECT_TRUE(code == 0 || code == 6) << code;
    }

    // What was stored in between must still carry a scheme's values.
    void CheckThatSchemesWorkFor(const std::string& user)
    {
        for (const PM_Variable_Data& data :
             {schemes::Variable(1, 1, "MonitorOffTimeOut", 300), schemes::Variable(1, 1, "Wifi", 1)})
        {
            EXPECT_EQ(0, host->SendFor(user, "EDIT_SCHEME", Payload(data)).code) << user << data.valName;
            EXPECT_EQ(data.val, host->SendFor(user, "QUERY_SCHEME", Payload(data)).Number()) << user;
        }
    }

    std::optional<Host> host;
    std::atomic<bool> m_over = false;
    std::atomic<int> m_events = 0;
};

INSTANTIATE_TEST_SUITE_P(Windows, ManyThreads, testing::Values(5, 6));

TEST_P(ManyThreads, BreakNothing)
{
    const std::string installed = seeding::ReadBytes(ProfileFile("PowerSchemes.ini")).value();
    host->onEvent = [this](const Event&) { OnEvent(); };
    std::thread others[] = {
        Repeat(
            []
            {
                const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent");
                SetEvent(event);
                CloseHandle(event);
            }),
        Repeat(
            [this]
            {
                EXPECT_EQ(0, host->Initialize());
                EXPECT_EQ(0, host->Uninitialize());
            }),
    };
    std::vector<Client> clients;
    for (unsigned number = 0; number < kClients; ++number)
    {
        clients.emplace_back(*host, number);
    }
    std::vector<std::thread> threads;
    for (Client& client : clients)
    {
        threads.emplace_back(&Client::Run, &client);
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    m_over = true;
    for (std::thread& thread : others)
    {
        thread.join();
    }
    host->Uninitialize();

    EXPECT_FALSE(host->TakeEvents().empty());
    for (const Client& client : clients)
    {
        EXPECT_EQ(kRequestsOfEach, client.LastMark());
    }
    // A full clearing takes away what the installation knows of the standard schemes.
    seeding::WriteBytes(ProfileFile("PowerSchemes.ini"), installed);
    CheckThatSchemesWorkFor("alice");
    CheckThatSchemesWorkFor("bob");
    std::error_code error;
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(simulated::Machine::PathOf("drives/C"), error))
    {
        EXPECT_TRUE(entry.path().extension() != ".ini" || IsWellFormed(entry.path()));
    }
}

} // namespace
