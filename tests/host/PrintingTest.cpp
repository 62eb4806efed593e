// tests/host/PrintingTest.cpp
//
// How answers and events read.

#include "Printing.h"

#include <gmock/gmock.h>

#include <cstring>

namespace
{

host::Answer AnswerOf(LONG code, const std::vector<std::int32_t>& numbers)
{
    host::Answer answer;
    answer.code = code;
    answer.reply.resize(numbers.size() * sizeof(std::int32_t));
    if (!numbers.empty())
    {
        std::memcpy(answer.reply.data(), numbers.data(), answer.reply.size());
    }
    return answer;
}

std::string Text(const char* command, const host::Answer& answer)
{
    return host::Show(command, host::FindCommand(command), answer, host::Style::Text);
}

std::string Json(const char* command, const host::Answer& answer)
{
    return host::Show(command, host::FindCommand(command), answer, host::Style::Json);
}

} // namespace

TEST(PrintingTest, AnswersAreDecodedFieldByField)
{
    EXPECT_EQ("GET_POWER_INFO: OK (0)\n"
              "  state               4 (charging)\n"
              "  percent             80 %\n"
              "  time                -1 (unknown)\n",
              Text("GET_POWER_INFO", AnswerOf(0, {4, 80, -1})));
    EXPECT_THAT(Text("GET_POWER_INFO", AnswerOf(0, {2, 80, 5400})),
                testing::EndsWith("  time                5400 s until full, or left while discharging\n"));
    EXPECT_EQ("GET_LUMS_LEVEL: REFUSED (1)\n", Text("GET_LUMS_LEVEL", AnswerOf(1, {})));
    EXPECT_EQ("MAKE_COFFEE: UNKNOWN COMMAND (5)\n", Text("MAKE_COFFEE", AnswerOf(5, {})));
    // A reply of another size than the record's is shown as it is.
    EXPECT_EQ("GET_POWER_INFO: FAILED (6)\n  bytes 01000000\n", Text("GET_POWER_INFO", AnswerOf(6, {1})));
}

TEST(PrintingTest, WholeSchemeIsATableOfMainsAndBattery)
{
    host::Answer answer;
    answer.reply.resize(632);
    const std::int32_t battery = 600;
    std::memcpy(answer.reply.data() + 600, &battery, sizeof battery);
    const std::string text = Text("QUERY_SCHEME_ALL", answer);
    EXPECT_NE(std::string::npos, text.find("                      mains             battery\n"));
    EXPECT_NE(std::string::npos, text.find("  monitorOffTimeOut   0 (never)         600 s\n"));
}

TEST(PrintingTest, JsonIsOneObjectOnALine)
{
    EXPECT_EQ(
        "{\"command\":\"GET_POWER_INFO\",\"result\":0,\"reply\":{\"state\":1,\"percent\":50,\"time\":7}}\n",
        Json("GET_POWER_INFO", AnswerOf(0, {1, 50, 7})));
    host::Answer text;
    for (const char letter : std::string("a\"b\\c\n\0", 7))
    {
        text.reply.push_back(static_cast<std::byte>(letter));
    }
    EXPECT_EQ("{\"command\":\"GET_USERID\",\"result\":0,\"reply\":\"a\\\"b\\\\c\\u000a\"}\n",
              Json("GET_USERID", text));
    const host::Event event{"module", "SCHEME_APPLIED", AnswerOf(0, {4}).reply, 0};
    EXPECT_EQ("{\"event\":\"SCHEME_APPLIED\",\"value\":4}\n", host::Show(event, host::Style::Json));
}
