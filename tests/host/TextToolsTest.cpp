// tests/host/TextToolsTest.cpp
//
// Words and numbers of the host's command line.

#include "TextTools.h"

#include <gtest/gtest.h>

using host::ParseNumber;
using host::SplitWords;

TEST(TextToolsTest, WordsAreSplitAtBlanksOutsideQuotes)
{
    struct Case
    {
        const char* line;
        std::vector<std::string> words;
    };
    const Case cases[] = {
        {"", {}},
        {"# a comment", {}},
        {"APPLY_SCHEME 3 # why", {"APPLY_SCHEME", "3"}},
        {"A name=\"two words\" x", {"A", "name=two words", "x"}},
        {"A \"say \"\"hi\"\"\"", {"A", "say \"hi\""}},
        {"A path=C:\\Program#1", {"A", "path=C:\\Program#1"}},
        {"CRLF line\r", {"CRLF", "line"}},
    };
    for (const Case& each : cases)
    {
        const auto words = SplitWords(each.line);
        ASSERT_TRUE(words.has_value()) << each.line;
        EXPECT_EQ(each.words, *words) << each.line;
    }
    EXPECT_FALSE(SplitWords("A \"open").has_value());
}

TEST(TextToolsTest, NumbersHave32Bits)
{
    EXPECT_EQ(-2147483647 - 1, ParseNumber("-2147483648"));
    EXPECT_EQ(-1, ParseNumber("4294967295"));
    EXPECT_EQ(-1, ParseNumber("0xFFFFFFFF"));
    EXPECT_EQ(31, ParseNumber("0x1f"));
    for (const char* text : {"", "-", "0x", "12a", " 1", "4294967296", "-2147483649", "+1"})
    {
        EXPECT_FALSE(ParseNumber(text).has_value()) << text;
    }
}
