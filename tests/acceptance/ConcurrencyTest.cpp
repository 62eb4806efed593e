// tests/acceptance/ConcurrencyTest.cpp
//
// A host with many threads: requests of several users, events from outside, starts and stops, all at once.
// What the requests do is told by other tests; here nothing may break, get lost or stay open.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/HostThread.h"
#include "acceptance/RequestWords.h"
#include "transcripts/Samples.h"

#include <algorithm>
#include <atomic>
#include <deque>
#include <random>
#include <sstream>

namespace
{

constexpr unsigned kSeed = 19830512;
constexpr int kClients = 4;
constexpr int kRequestsOfEach = 60;

// Two whom the machine knows, and nobodies.
const std::string kUsers[] = {environment::UserName(), environment::OtherUserName(), "nobody", ""};

// Set on the threads on which requests are sent.
thread_local bool isClient = false;

// One thread of the host: requests, and every so often a number in a file that all clients share.
class Client
{
public:
    Client(Host& host, unsigned number)
        : m_host(host), m_random(kSeed + number),
          m_mark("type=profile file=sample.ini section=Clients item=Client" + std::to_string(number))
    {
    }

    void Run()
    {
        isClient = true;
        for (int round = 1; round <= kRequestsOfEach; ++round)
        {
            SendAny();
            if (round % 10 == 0)
            {
                const std::string mark = m_mark + " value=" + std::to_string(round);
                EXPECT_EQ(0, m_host.Send("PUT_INT_INTO_CONFIG", PayloadOf("PUT_INT_INTO_CONFIG", mark)).code);
            }
        }
    }

    // What the shared file says of this client.
    LONG LastMark() const
    {
        return m_host.Send("GET_INT_FROM_CONFIG", PayloadOf("GET_INT_FROM_CONFIG", m_mark)).Number();
    }

private:
    template <class Table>
    const auto& AnyOf(const Table& table)
    {
        return table[std::uniform_int_distribution<std::size_t>(0, std::size(table) - 1)(m_random)];
    }

    // The samples are about schemes of another machine; other values do no harm.
    void SendAny()
    {
        const Sample& sample = AnyOf(Samples());
        std::string fields = sample.fields;
        std::replace(fields.begin(), fields.end(), '7', '1');
        const LONG code =
            m_host.SendFor(AnyOf(kUsers), sample.command, PayloadOf(sample.command, fields)).code;
        EXPECT_TRUE(code == 0 || code == 1 || code == 5 || code == 6) << sample.command << ' ' << code;
    }

    Host& m_host;
    std::mt19937 m_random;
    std::string m_mark;
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

    // Fails the test when a file has a line that is neither a section nor a key.
    static void CheckFile(const std::string& file)
    {
        std::istringstream lines(seeding::ReadBytes(file).value_or(""));
        for (std::string line; std::getline(lines, line);)
        {
            EXPECT_TRUE(line == "\r" || line[0] == ';' || line[0] == '[' || line.find('=') != line.npos)
                << file << ": " << line;
        }
    }

    std::atomic<bool> m_over = false;
    std::atomic<int> m_events = 0;
};

INSTANTIATE_TEST_SUITE_P(Windows, ManyThreads, testing::ValuesIn(environment::Generations()));

TEST_P(ManyThreads, BreakNothing)
{
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
    CheckFile(ProfileFile("PowerSchemes.ini"));
    CheckFile(ProfileFile("sample.ini"));
    CheckFile(InstallationFile("ORVLCfg.ini"));
}

} // namespace
