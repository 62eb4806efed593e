// tests/transcripts/TranscriptTest.cpp
//
// Each command's transcript on both generations of Windows: result, reply, events, requests to the service,
// both logs, what changes on the machine, and how many platform calls of which kind it takes.

#include "transcripts/Transcript.h"
#include "plugin/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace
{

// The transcripts of all samples on one generation, each line indented by two blanks.
std::vector<std::vector<std::string>> RenderOn(DWORD major)
{
    std::vector<std::vector<std::string>> all;
    Scene scene(major);
    for (const Sample& sample : Samples())
    {
        const RequestOutcome outcome = scene.Run(sample);
        all.push_back(Show(sample, outcome, scene.Changes()));
        all.back().push_back("  calls     " + (outcome.calls.empty() ? "none" : outcome.calls));
    }
    return all;
}

// Both generations' lines in one text, in their order: what only one of them has starts with its number.
std::string Merge(const std::vector<std::string>& xp, const std::vector<std::string>& vista)
{
    // How many lines the rests from each pair of lines have in common.
    std::vector<std::vector<std::size_t>> common(xp.size() + 1, std::vector<std::size_t>(vista.size() + 1));
    for (std::size_t i = xp.size(); i-- > 0;)
    {
        for (std::size_t j = vista.size(); j-- > 0;)
        {
            common[i][j] =
                xp[i] == vista[j] ? common[i + 1][j + 1] + 1 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::string text;
    for (std::size_t i = 0, j = 0; i < xp.size() || j < vista.size();)
    {
        if (i < xp.size() && j < vista.size() && xp[i] == vista[j])
        {
            text += "  " + xp[i++] + '\n';
            ++j;
        }
        else if (j == vista.size() || (i < xp.size() && common[i + 1][j] >= common[i][j + 1]))
        {
            text += "5.1" + xp[i++].substr(1) + '\n';
        }
        else
        {
            text += "6.0" + vista[j++].substr(1) + '\n';
        }
    }
    return text;
}

// The content of each command's golden file. Made once: a scene costs more than all requests in it.
const std::map<std::string, std::string>& Texts()
{
    static const std::map<std::string, std::string> texts = []
    {
        std::map<std::string, std::string> made;
        const auto xp = RenderOn(5);
        const auto vista = RenderOn(6);
        std::size_t index = 0;
        for (const Sample& sample : Samples())
        {
            std::string& text = made[sample.command];
            text += (text.empty() ? "" : "\n") + Title(sample) + Merge(xp[index], vista[index]);
            ++index;
        }
        return made;
    }();
    return texts;
}

TEST(Samples, ShowEachCommand)
{
    for (const CommandInfo& info : commands::kAll)
    {
        EXPECT_THAT(CommandsOfSamples(), testing::Contains(info.name)) << "no line in Samples.cpp";
    }
}

class Transcripts : public testing::TestWithParam<std::string>
{
};

INSTANTIATE_TEST_SUITE_P(Of, Transcripts, testing::ValuesIn(CommandsOfSamples()),
                         [](const auto& command) { return command.param; });

TEST_P(Transcripts, AreAsReviewed)
{
    CompareWithGolden(GetParam() + ".txt", Texts().at(GetParam()));
}

} // namespace
