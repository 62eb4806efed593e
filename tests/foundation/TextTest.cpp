// tests/foundation/TextTest.cpp
//
// The bounded text helpers: what fits, what is cut, and both code pages.

#include "foundation/Text.h"
#include "acceptance/Seeding.h"
#include "support/NotebookTest.h"

#include <algorithm>

using seeding::Utf8;
using seeding::Wide;

namespace
{

// A buffer whose last characters must stay untouched.
struct Target
{
    static constexpr wchar_t kUntouched = 0x2603;
    wchar_t text[12];

    Target()
    {
        std::fill(std::begin(text), std::end(text), kUntouched);
    }
    bool IsUntouchedFrom(std::size_t position) const
    {
        return std::all_of(text + position, std::end(text), [](wchar_t unit) { return unit == kUntouched; });
    }
};

TEST(BoundedText, CopyAndAppendCutAndTerminate)
{
    constexpr std::tuple<const char*, const char*, std::size_t, const char*, bool> kCases[] = {
        {"ab", "cd", 5U, "abcd", true}, {"ab", "cd", 4U, "abc", false}, {"ab", "cd", 3U, "ab", false},
        {"ab", "", 3U, "ab", true},     {"", "abcdef", 1U, "", false},  {"abcdef", "g", 4U, "abc", false},
    };
    for (const auto& [begin, appended, capacity, outcome, whole] : kCases)
    {
        Target target;
        text::Copy(target.text, capacity, Wide(begin).data());
        EXPECT_EQ(whole, text::Append(target.text, capacity, Wide(appended).data())) << outcome;
        EXPECT_EQ(outcome, Utf8(target.text));
        EXPECT_TRUE(target.IsUntouchedFrom(capacity));
    }
    Target target;
    EXPECT_FALSE(text::Copy(target.text, 0, L"a"));
    EXPECT_FALSE(text::Append(target.text, 3, L"a")) << "a text without an end";
    EXPECT_EQ(0U, text::Format(target.text, 0, L"a"));
    EXPECT_TRUE(target.IsUntouchedFrom(0));
    EXPECT_TRUE(text::Copy(target.text, 1, nullptr));
    EXPECT_EQ("", Utf8(target.text));
}

// A text that fills the room to the last character is the case in which the runtime doesn't terminate.
TEST(BoundedText, FormatCutsAtTheCapacity)
{
    for (const wchar_t* const text : {L"abcd", L"abcde", L"abcdef"})
    {
        Target target;
        EXPECT_EQ(4U, text::Format(target.text, 5, L"%s", text));
        EXPECT_EQ("abcd", Utf8(target.text));
        EXPECT_TRUE(target.IsUntouchedFrom(5));
    }
}

TEST(BoundedText, ComparisonsTreatCaseAsDocumented)
{
    // With the neighbours of the letters, and a pair that is equal to the system but of different length.
    constexpr std::tuple<const char*, const char*, bool, bool, bool> kCases[] = {
        {"CpuSpeed", "CpuSpeed", true, true, true},
        {"CpuSpeed", "CPUSPEED", false, true, true},
        {"aAzZ", "AaZz", false, true, true},
        {"J\u00F6rg", "j\u00D6RG", false, false, true},
        {"abc", "abcd", false, false, false},
        {"Stra\u00DFe", "STRASSE", false, false, false},
        {"", "", true, true, true},
        {"@", "`", false, false, false},
        {"[", "{", false, false, false},
    };
    for (const auto& [one, other, equal, ignoringAscii, names] : kCases)
    {
        const std::vector<wchar_t> left = Wide(one);
        const std::vector<wchar_t> right = Wide(other);
        EXPECT_EQ(equal, text::Equal(left.data(), right.data())) << one;
        EXPECT_EQ(ignoringAscii, text::EqualIgnoringCase(left.data(), right.data())) << one;
        EXPECT_EQ(names, text::EqualNames(left.data(), right.data())) << one;
    }
    EXPECT_TRUE(text::Contains(L"S-1-5_Classes", L"Classes"));
    EXPECT_FALSE(text::Contains(L"S-1-5_classes", L"Classes"));
    EXPECT_TRUE(text::Contains(L"abc", L""));
}

TEST(NumbersInText, AreReadAsTheRuntimeReadsThem)
{
    // With the neighbours of blanks and digits.
    constexpr std::tuple<const char*, int, bool, ULONG> kCases[] = {
        {"42", 42, true, 0x42U},     {" \t\r-7x", -7, true, 0u - 7u},
        {"+3", 3, true, 3U},         {"\b3", 0, false, 0U},
        {"\x0E 3", 0, false, 0U},    {"", 0, false, 0U},
        {"-", 0, false, 0U},         {"g1", 0, false, 0U},
        {"/1", 0, false, 0U},        {":1", 0, false, 0U},
        {"90:", 90, true, 0x90U},    {"0X1F", 0, true, 0x1FU},
        {"1x2", 1, true, 1U},        {"0x", 0, false, 0U},
        {"afAFz", 0, true, 0xAFAFU}, {"2147483648", -2147483647 - 1, true, 0x47483648U},
    };
    for (const auto& [digits, decimal, isHex, number] : kCases)
    {
        ULONG hex = 0;
        EXPECT_EQ(decimal, text::ToInt(Wide(digits).data())) << digits;
        EXPECT_EQ(isHex, text::ScanHex(Wide(digits).data(), hex)) << digits;
        EXPECT_EQ(number, hex) << digits;
    }
}

using CodePages = NotebookTest;

TEST_F(CodePages, WideTextBecomesNarrowAndIsCutAtWholeCharacters)
{
    // Never half a character or half a surrogate pair; "?" for what the code page lacks.
    constexpr std::tuple<unsigned, const char*, std::size_t, const char*> kCases[] = {
        {1252U, "J\u00F6rg", 32U, "J\xF6rg"},
        {1252U, "\u4F60x", 32U, "?x"},
        {1252U, "abcdef", 4U, "abc"},
        {65001U, "\u00F6\u00F6", 5U, "\xC3\xB6\xC3\xB6"},
        {65001U, "\u00F6\u00F6", 4U, "\xC3\xB6"},
        {65001U, "\u00F6", 2U, ""},
        {65001U, "a\U0001F600", 5U, "a"},
        {65001U, "a\U0001F600", 6U, "a\xF0\x9F\x98\x80"},
        {1252U, "", 4U, ""},
        {1252U, "a", 1U, ""},
    };
    for (const auto& [codePage, wide, capacity, narrow] : kCases)
    {
        ASSERT_TRUE(simulated::Notebook::SetCodePage(codePage));
        std::string target(capacity + 1, '#');
        EXPECT_EQ(std::string(narrow).size(), text::ToNarrow(Wide(wide).data(), target.data(), capacity));
        EXPECT_STREQ(narrow, target.c_str()) << wide;
        EXPECT_EQ('#', target[capacity]);
    }
    char untouched = '#';
    EXPECT_EQ(0U, text::ToNarrow(L"a", &untouched, 0));
    EXPECT_EQ('#', untouched);
}

} // namespace
