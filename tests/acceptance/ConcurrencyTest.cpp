// tests/acceptance/ConcurrencyTest.cpp
//
// A host with many threads: requests of several users, events from outside, starts and stops, all at once.
// Other tests cover what the requests do; here nothing may break, get lost or stay open.

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
constexpr unsigned kClients = 8;
constexpr int kRequestsOfEach = 30;

// Two known users and two unknown ones.
const std::string kUsers[] = {environment::UserName(), environment::OtherUserName(), "nobody", ""};

// Set on the threads on which requests are sent.
thread_local bool isClient = false;

// Each client's own number in a file that all of them share.
std::string MarkOf(unsigned client)
{
    return "type=profile file=sample.ini section=Clients item=Client" + std::to_string(client);
}

// One thread of the host: requests of any user, each followed by its mark. The samples name schemes of
// another machine; other values do no harm.
void RunClient(Host& host, unsigned client)
{
    isClient = true;
    std::mt19937 random(kSeed + client);
    for (int round = 1; round <= kRequestsOfEach; ++round)
    {
        const Sample& sample = Samples()[random() % Samples().size()];
        std::string fields = sample.fields;
        std::replace(fields.begin(), fields.end(), '7', '1');
        const std::string& user = kUsers[random() % std::size(kUsers)];
        const LONG code = host.SendFor(user, sample.command, PayloadOf(sample.command, fields)).code;
        EXPECT_TRUE(code == 0 || code == 1 || code == 5 || code == 6) << sample.command << ' ' << code;
        const std::string mark = MarkOf(client) + " value=" + std::to_string(round);
        EXPECT_EQ(0, host.Send("PUT_INT_INTO_CONFIG", PayloadOf("PUT_INT_INTO_CONFIG", mark)).code);
    }
}

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

    // Sends a request from within an event, and sometimes stops the plug-in within a request's own event.
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
    {
        std::deque<HostThread> clients;
        for (unsigned client = 0; client < kClients; ++client)
        {
            clients.emplace_back([this, client] { RunClient(*host, client); });
        }
    }
    m_over = true;
    for (const HostThread& thread : others)
    {
        thread.Join();
    }
    host->Uninitialize();

    EXPECT_FALSE(host->TakeEvents().empty());
    for (unsigned client = 0; client < kClients; ++client)
    {
        EXPECT_EQ("0 answer=" + std::to_string(kRequestsOfEach),
                  Ask(*host, "GET_INT_FROM_CONFIG", MarkOf(client)));
    }
    CheckFile(ProfileFile("PowerSchemes.ini"));
    CheckFile(ProfileFile("sample.ini"));
    CheckFile(InstallationFile("ORVLCfg.ini"));
}

} // namespace
