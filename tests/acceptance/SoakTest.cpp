// tests/acceptance/SoakTest.cpp
//
// Mixed requests in one process, as many as SOAK_REQUESTS says. What process and machine hold at the end is
// what they held after the first of them; the numbers on the way are printed for a graph.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "transcripts/Samples.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>

namespace
{

constexpr int kFewRequests = 200;
constexpr int kWarmUp = 1000; ///< what the process keeps for good is there after these
constexpr unsigned kSeed = 19991231;

// What libraries keep for the next call; natively the simulated platform too, whose heap settles after half a
// million requests. The plug-in's own blocks are among what is held, and must be the same.
constexpr std::size_t kHeapTolerance = 160 * 1024;

// The power manager's counter of scheme numbers may have more of them.
constexpr std::size_t kDigits = 4;

struct Footprint
{
    std::size_t heapBytes = 0;
    DWORD handles = 0;
    std::size_t files = 0;
    std::size_t fileBytes = 0;
};

class Soak : public GenerationTest
{
protected:
    void SetUp() override
    {
        GenerationTest::SetUp();
        for (const Sample& sample : Samples())
        {
            // The samples name schemes of another machine; 1 is one of every machine.
            std::string fields = sample.fields;
            std::replace(fields.begin(), fields.end(), '7', '1');
            m_payloads.push_back(PayloadOf(sample.command, fields));
        }
    }

    void Send(std::size_t number)
    {
        host->Send(Samples()[number].command, m_payloads[number]);
        host->TakeEvents();
    }

    // The same state whatever was sent before.
    Footprint AtRest()
    {
        for (std::size_t number = 0; number < m_payloads.size(); ++number)
        {
            Send(number);
        }
        host->Send("CLEAR_SCHEMES", Payload(LONG{1}));
        Footprint footprint{environment::HeapInUse(), environment::Held().handles};
        for (const std::filesystem::path& folder : environment::Folders())
        {
            for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            {
                footprint.files += entry.is_regular_file() ? 1 : 0;
                footprint.fileBytes +=
                    entry.is_regular_file() ? static_cast<std::size_t>(entry.file_size()) : 0;
            }
        }
        return footprint;
    }

    std::vector<std::vector<std::byte>> m_payloads;
};

INSTANTIATE_TEST_SUITE_P(Windows, Soak, testing::ValuesIn(environment::Generations()));

TEST_P(Soak, HoldsNothingMoreThanAfterTheFirstRequests)
{
    const char* const wanted = std::getenv("SOAK_REQUESTS");
    const int stages = wanted == nullptr ? 2 : 50;
    const int inEach = (wanted == nullptr ? kFewRequests : std::atoi(wanted)) / stages;
    std::mt19937 random(kSeed);
    Footprint first;
    Footprint now;
    for (int stage = 0; stage <= stages; ++stage)
    {
        for (int request = 0; request < (stage == 0 ? std::min(inEach, kWarmUp) : inEach); ++request)
        {
            Send(random() % m_payloads.size());
        }
        now = AtRest();
        first = stage == 0 ? now : first;
        if (wanted != nullptr)
        {
            std::cout << "soak " << GetParam() << ' ' << stage * inEach << ' ' << now.heapBytes << ' '
                      << now.handles << ' ' << now.files << ' ' << now.fileBytes << std::endl;
        }
    }
    EXPECT_LE(now.heapBytes, first.heapBytes + kHeapTolerance);
    EXPECT_LE(now.fileBytes, first.fileBytes + kDigits);
    EXPECT_EQ(first.handles, now.handles);
    EXPECT_EQ(first.files, now.files);
}

} // namespace
