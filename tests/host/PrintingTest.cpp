// tests/host/PrintingTest.cpp
//
// How answers read that the sessions in tests/sessions don't show.

#include "Printing.h"

#include <gtest/gtest.h>

namespace
{

std::string Shown(const char* command, LONG code, const std::string& reply, host::Style style)
{
    host::Answer answer;
    answer.code = code;
    for (const char byte : reply)
    {
        answer.reply.push_back(static_cast<std::byte>(byte));
    }
    return host::Show(command, host::FindCommand(command), answer, style);
}

} // namespace

TEST(PrintingTest, AnswersOutOfTheOrdinary)
{
    // A reply of another size than the record's is shown as it is.
    EXPECT_EQ("GET_POWER_INFO: FAILED (6)\n  bytes 0102\n",
              Shown("GET_POWER_INFO", 6, "\x01\x02", host::Style::Text));
    EXPECT_EQ("{\"command\":\"GET_USERID\",\"result\":0,\"reply\":\"a\\\"b\\\\c\\u000a\"}\n",
              Shown("GET_USERID", 0, std::string("a\"b\\c\n\0", 7), host::Style::Json));
}
