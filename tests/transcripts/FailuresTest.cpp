// tests/transcripts/FailuresTest.cpp
//
// The effect of one failing platform call on a request: for every call site in the plug-in, the
// first call from there fails once. The golden files list, for each effect, the calls that have it; what
// isn't listed changes neither result, reply, events nor logs. Afterwards the state is brought back, and the
// same request must give its clean outcome: nothing is left in the plug-in.

#include "base/Trace.h"
#include "transcripts/Transcript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>
#include <vector>

using simulated::Faults;
using simulated::Leaks;
using simulated::Trace;
using simulated::TracedCall;

namespace
{

// A call as a row names it: "RegOpenKeyExW 2", the second of its name in the request.
struct Candidate
{
    unsigned nth; ///< among all calls of the request
    std::string name;
};

// The first call from each call site.
std::vector<Candidate> CandidatesOf(const std::vector<TracedCall>& calls)
{
    std::vector<Candidate> candidates;
    std::map<std::string, unsigned> ordinals;
    std::set<const void*> sites;
    for (std::size_t index = 0; index < calls.size(); ++index)
    {
        const TracedCall& call = calls[index];
        const unsigned ordinal = ++ordinals[call.function];
        if (!IsOfLog(calls, index) && sites.insert(call.site).second)
        {
            candidates.push_back(
                {static_cast<unsigned>(index + 1), call.function + ' ' + std::to_string(ordinal)});
        }
    }
    return candidates;
}

bool IsAnswer(const std::string& line)
{
    return line.starts_with("  result") || line.starts_with("  reply");
}

// What `lines` have that `good` hasn't, and how many of the good lines are missing; empty for no difference.
std::string Effect(const std::vector<std::string>& good, const std::vector<std::string>& lines)
{
    std::string effect;
    std::multiset<std::string> missing(good.begin(), good.end());
    for (const std::string& line : lines)
    {
        const auto found = missing.find(line);
        if (found != missing.end())
        {
            missing.erase(found);
            continue;
        }
        std::istringstream words(line);
        std::string heading;
        words >> heading;
        const std::size_t text = std::min(line.size(), std::size_t{12});
        effect += (effect.empty() ? "" : "; ") + heading + ' ' + line.substr(text);
    }
    // A changed result or reply is shown in full.
    const auto stood =
        std::count_if(lines.begin(), lines.end(),
                      [&](const std::string& line)
                      { return IsAnswer(line) && std::find(good.begin(), good.end(), line) == good.end(); });
    const std::size_t lost = missing.size() - static_cast<std::size_t>(stood);
    if (lost != 0)
    {
        effect +=
            (effect.empty() ? "" : "; ") + std::to_string(lost) + (lost == 1 ? " line less" : " lines less");
    }
    return effect;
}

class Failures : public testing::TestWithParam<std::tuple<DWORD, std::string>>
{
protected:
    static void TearDownTestSuite()
    {
        s_scene.reset();
    }

    // One scene at a time, for all commands on its generation.
    void SetUp() override
    {
        static DWORD present = 0;
        if (const DWORD major = std::get<0>(GetParam()); present != major)
        {
            s_scene.reset();
            s_scene = std::make_unique<Scene>(major);
            present = major;
        }
    }

    // The rows of one sample: calls that have the same effect when they fail, and the effect.
    static std::string Rows(const Sample& sample)
    {
        Scene& scene = *s_scene;
        Trace::Record(true);
        const RequestOutcome good = scene.Run(sample);
        const std::vector<Candidate> candidates = CandidatesOf(Trace::Calls());
        Trace::Record(false);
        const std::vector<std::string> goodLines = Show(sample, good, {});
        const unsigned held = Leaks::Count();

        FailureRows rows;
        for (const Candidate& candidate : candidates)
        {
            SCOPED_TRACE(candidate.name);
            scene.Restore();
            Faults::Inject("*", candidate.nth, ERROR_GEN_FAILURE);
            const RequestOutcome outcome = scene.Send(sample);
            EXPECT_TRUE(Faults::AllHit());
            Faults::Clear();
            EXPECT_EQ(held, Leaks::Count()) << Leaks::Describe();
            rows.Add(candidate.name, Effect(goodLines, Show(sample, outcome, {})));
            EXPECT_EQ(goodLines, Show(sample, scene.Run(sample), {})) << "the next request";
        }
        return rows.Text();
    }

    static std::unique_ptr<Scene> s_scene;
};

std::unique_ptr<Scene> Failures::s_scene;

INSTANTIATE_TEST_SUITE_P(Of, Failures,
                         testing::Combine(testing::Values(DWORD{5}, DWORD{6}),
                                          testing::ValuesIn(CommandsOfSamples())),
                         [](const auto& row)
                         { return std::get<1>(row.param) + "_On" + std::to_string(std::get<0>(row.param)); });

TEST_P(Failures, HaveTheirReviewedEffects)
{
    const auto& [major, command] = GetParam();
    std::vector<std::pair<std::string, std::string>> titlesAndRows; // samples with the same rows share them
    for (const Sample& sample : Samples())
    {
        // A new user's first request loads the library anew, where the places of calls are others.
        if (command == sample.command && !sample.isNewUser)
        {
            const std::string rows = Rows(sample);
            const auto known = std::find_if(titlesAndRows.begin(), titlesAndRows.end(),
                                            [&](const auto& entry) { return entry.second == rows; });
            (known == titlesAndRows.end() ? titlesAndRows.emplace_back("", rows) : *known).first +=
                Title(sample);
        }
    }
    std::string text;
    for (const auto& [titles, rows] : titlesAndRows)
    {
        text += (text.empty() ? "" : "\n") + titles + rows;
    }
    CompareWithGolden("failures/" + std::string(major == 5 ? "5.1/" : "6.0/") + command + ".txt", text);
}

} // namespace
