// tests/transcripts/TranscriptTest.cpp
//
// Each command's transcript on both generations of Windows: result, reply, events, requests to the service,
// both logs, what changes on the machine, and how many platform calls of which kind it takes.

#include "transcripts/Transcript.h"
#include "plugin/Commands.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

namespace
{

struct Rendered
{
    std::vector<std::string> lines;
    std::string calls;
};

// The transcripts of all samples on one generation.
std::vector<Rendered> RenderOn(DWORD major)
{
    std::vector<Rendered> all;
    Scene scene(major);
    for (const Sample& sample : Samples())
    {
        const RequestOutcome outcome = scene.Run(sample);
        all.push_back({Show(sample, outcome, scene.Changes()), outcome.calls});
    }
    return all;
}

void Add(std::string& text, const char* heading, const Rendered& rendered)
{
    text += heading;
    for (const std::string& line : rendered.lines)
    {
        text += line + '\n';
    }
}

std::string CallsLine(const std::string& heading, const Rendered& rendered)
{
    return "  " + heading + (rendered.calls.empty() ? "none" : rendered.calls) + '\n';
}

// The content of each command's golden file. Made once: a scene costs more than all requests in it.
const std::map<std::string, std::string>& Texts()
{
    static const std::map<std::string, std::string> texts = []
    {
        std::map<std::string, std::string> made;
        const std::vector<Rendered> xp = RenderOn(5);
        const std::vector<Rendered> vista = RenderOn(6);
        std::size_t index = 0;
        for (const Sample& sample : Samples())
        {
            std::string& text = made[sample.command];
            text += (text.empty() ? "" : "\n") + Title(sample);
            if (xp[index].lines == vista[index].lines)
            {
                Add(text, "5.1 and 6.0\n", xp[index]);
                text += CallsLine("calls 5.1 ", xp[index]) + CallsLine("calls 6.0 ", vista[index]);
            }
            else
            {
                Add(text, "5.1\n", xp[index]);
                text += CallsLine("calls     ", xp[index]);
                Add(text, "6.0\n", vista[index]);
                text += CallsLine("calls     ", vista[index]);
            }
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
