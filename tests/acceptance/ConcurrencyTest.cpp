// tests/acceptance/ConcurrencyTest.cpp
//
// A host with many threads: requests of several users, events from outside, starts and stops, all at once.
// What the requests do is told by other tests; here nothing may break, get lost or stay open.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/CommandShapes.h"
#include "acceptance/HostThread.h"
#include "acceptance/SampleRequests.h"
#include "acceptance/Schemes.h"

#include <atomic>
#include <deque>
#include <random>

namespace
{

constexpr unsigned kSeed = 19830512;
constexpr int kClients = 4;
constexpr int kRequestsOfEach = 60;
constexpr int kFirstAdded = 6;

// Two whom the machine knows, and nobodies.
const std::string kUsers[] = {environment::UserName(), environment::OtherUserName(), "nobody", ""};

// Set on the threads on which requests are sent.
thread_local bool isClient = false;

// One thread of the host: requests that make sense, requests that don't, and every so often a number in a
// file that all clients share.
class Client
{
public:
    Client(Host& host, unsigned number) : m_host(host), m_random(kSeed + number)
    {
        schemes::SetText(m_mark.file, "sample.ini");
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
                EXPECT_EQ(0, m_host.SendFor(kUsers[0], "PUT_INT_INTO_CONFIG", Payload(m_mark)).code);
            }
        }
    }

    // What the shared file says of this client.
    LONG LastMark() const
    {
        return m_host.SendFor(kUsers[0], "GET_INT_FROM_CONFIG", Payload(m_mark)).Number();
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

class ManyThreads : public GenerationTest
{
protected:
    // Work for a thread: repeats `step` until `m_over`.
    template <class Step>
    auto Repeating(Step step)
    {
        return [this, step]
        {
            while (!m_over)
            {
                step();
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        };
    }

    // The next request from within an event, and now and then a stop from within a request's own event.
    void OnEvent()
    {
        if (isClient && ++m_events % 4 == 0)
        {
            EXPECT_EQ(0, host->Uninitialize());
        }
        const LONG code = host->SendFor(kUsers[1], "GET_ACTIVE_SCHEME").code;
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

    std::atomic<bool> m_over = false;
    std::atomic<int> m_events = 0;
};

INSTANTIATE_TEST_SUITE_P(Windows, ManyThreads, testing::ValuesIn(environment::Generations()));

TEST_P(ManyThreads, BreakNothing)
{
    const std::string installed = seeding::ReadBytes(ProfileFile("PowerSchemes.ini")).value();
    host->onEvent = [this](const Event&) { OnEvent(); };
    const auto startAndStop = Repeating(
        [this]
        {
            EXPECT_EQ(0, host->Initialize());
            EXPECT_EQ(0, host->Uninitialize());
        });
    const HostThread others[] = {HostThread(startAndStop), HostThread(startAndStop),
                                 HostThread(Repeating(SignalApplied))};
    std::vector<Client> clients;
    for (unsigned number = 0; number < kClients; ++number)
    {
        clients.emplace_back(*host, number);
    }
    {
        std::deque<HostThread> threads;
        for (Client& client : clients)
        {
            threads.emplace_back([&client] { client.Run(); });
        }
    }
    m_over = true;
    for (const HostThread& thread : others)
    {
        thread.Join();
    }
    host->Uninitialize();

    EXPECT_FALSE(host->TakeEvents().empty());
    for (const Client& client : clients)
    {
        EXPECT_EQ(kRequestsOfEach, client.LastMark());
    }
    // A full clearing takes away what the installation knows of the standard schemes.
    seeding::WriteBytes(ProfileFile("PowerSchemes.ini"), installed);
    CheckThatSchemesWorkFor(kUsers[0]);
    CheckThatSchemesWorkFor(kUsers[1]);
    CheckFiles();
}

} // namespace
