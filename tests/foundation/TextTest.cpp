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

// A buffer whose last characters nobody may touch.
struct Target
{
    static constexpr wchar_t kUntouched = 0x2603;
    wchar_t text[12];

    Target()
    {
        std::fill(std::begin(text), std::end(text), kUntouched);
    }
    bool IsUntouchedFrom(std::size_t place) const
    {
        return std::all_of(text + place, std::end(text), [](wchar_t unit) { return unit == kUntouched; });
    }
};

TEST(BoundedText, CopyAndAppendCutAndTerminate)
{
    struct Case
    {
        const char* begin;
        const char* appended;
        std::size_t capacity;
        const char* outcome;
        bool whole;
    };
    constexpr Case kCases[] = {
        {"ab", "cd", 5, "abcd", true}, {"ab", "cd", 4, "abc", false}, {"ab", "cd", 3, "ab", false},
        {"ab", "", 3, "ab", true},     {"", "abcdef", 1, "", false},  {"abcdef", "g", 4, "abc", false},
    };
    for (const Case& row : kCases)
    {
        Target target;
        text::Copy(target.text, row.capacity, Wide(row.begin).data());
        EXPECT_EQ(row.whole, text::Append(target.text, row.capacity, Wide(row.appended).data()))
            << row.outcome;
        EXPECT_EQ(row.outcome, Utf8(target.text));
        EXPECT_TRUE(target.IsUntouchedFrom(row.capacity));
    }
}

TEST(BoundedText, SeparatorIsAppendedOnce)
{
    constexpr std::pair<const char*, const char*> kCases[] = {{"", ""}, {"C:", "C:\\"}, {"C:\\", "C:\\"}};
    for (const auto& [folder, outcome] : kCases)
    {
        wchar_t target[8];
        text::Copy(target, Wide(folder).data());
        EXPECT_TRUE(text::AppendSeparator(target, std::size(target)));
        EXPECT_EQ(outcome, Utf8(target));
    }
    wchar_t full[] = L"ab";
    EXPECT_FALSE(text::AppendSeparator(full, std::size(full)));
    EXPECT_EQ("ab", Utf8(full));
}

TEST(BoundedText, FormatCutsAtTheCapacity)
{
    Target target;
    EXPECT_EQ(9U, text::Format(target.text, 10, L"%s=%d", L"abcde", 123456));
    EXPECT_EQ("abcde=123", Utf8(target.text));
    EXPECT_TRUE(target.IsUntouchedFrom(10));

    // A text that fills the room to the last character is the case in which the runtime doesn't terminate.
    EXPECT_EQ(4U, text::Format(target.text, 5, L"%s", L"abcde"));
    EXPECT_EQ("abcd", Utf8(target.text));
    EXPECT_EQ(4U, text::Format(target.text, 5, L"%s", L"abcd"));
    EXPECT_EQ("abcd", Utf8(target.text));
}

TEST(BoundedText, ComparisonsTellCaseApartAsTheyPromise)
{
    struct Case
    {
        const char* left;
        const char* right;
        bool equal;
        bool ignoringAscii;
        bool names;
    };
    constexpr Case kCases[] = {
        {"CpuSpeed", "CpuSpeed", true, true, true},
        {"CpuSpeed", "CPUSPEED", false, true, true},
        {"J\u00F6rg", "j\u00D6RG", false, false, true},
        {"abc", "abcd", false, false, false},
        {"Stra\u00DFe", "STRASSE", false, false, false}, // equal to the system, of different length
        {"", "", true, true, true},
        {"@", "`", false, false, false}, // the neighbours of the letters
        {"[", "{", false, false, false},
    };
    for (const Case& row : kCases)
    {
        const std::vector<wchar_t> left = Wide(row.left);
        const std::vector<wchar_t> right = Wide(row.right);
        EXPECT_EQ(row.equal, text::Equal(left.data(), right.data())) << row.left;
        EXPECT_EQ(row.ignoringAscii, text::EqualIgnoringCase(left.data(), right.data())) << row.left;
        EXPECT_EQ(row.names, text::EqualNames(left.data(), right.data())) << row.left;
    }
    EXPECT_TRUE(text::Contains(L"S-1-5_Classes", L"Classes"));
    EXPECT_FALSE(text::Contains(L"S-1-5_classes", L"Classes"));
    EXPECT_TRUE(text::Contains(L"abc", L""));
}

TEST(NumbersInText, AreReadAsTheRuntimeReadsThem)
{
    struct Case
    {
        const char* text;
        int decimal;
        bool isHex;
        ULONG hex;
    };
    constexpr Case kCases[] = {
        {"42", 42, true, 0x42},  {" \t-7x", -7, true, 0u - 7u},
        {"+3", 3, true, 3},      {"", 0, false, 0},
        {"-", 0, false, 0},      {"g1", 0, false, 0},
        {"0x1F", 0, true, 0x1F}, {"0x", 0, false, 0},
        {"fFz", 0, true, 0xFF},  {"2147483648", -2147483647 - 1, true, 0x47483648},
    };
    for (const Case& row : kCases)
    {
        ULONG hex = 0;
        EXPECT_EQ(row.decimal, text::ToInt(Wide(row.text).data())) << row.text;
        EXPECT_EQ(row.isHex, text::ScanHex(Wide(row.text).data(), hex)) << row.text;
        EXPECT_EQ(row.hex, hex) << row.text;
    }
}

class CodePages : public NotebookTest
{
};

TEST_F(CodePages, WideTextBecomesNarrowAndIsCutAtWholeCharacters)
{
    struct Case
    {
        unsigned codePage;
        const char* wide;
        std::size_t capacity;
        std::string narrow;
    };
    const Case kCases[] = {
        {1252, "J\u00F6rg", 32, "J\xF6rg"},
        {1252, "\u4F60x", 32, "?x"}, // what the code page lacks
        {1252, "abcdef", 4, "abc"},
        {65001, "\u00F6\u00F6", 5, "\xC3\xB6\xC3\xB6"},
        {65001, "\u00F6\u00F6", 4, "\xC3\xB6"}, // no half characters
        {65001, "a\U0001F600", 5, "a"},         // nor half surrogate pairs
        {65001, "a\U0001F600", 6, "a\xF0\x9F\x98\x80"},
        {1252, "", 4, ""},
        {1252, "a", 1, ""},
    };
    for (const Case& row : kCases)
    {
        simulated::Notebook::SetCodePage(row.codePage);
        std::string target(row.capacity + 1, '#');
        EXPECT_EQ(row.narrow.size(), text::ToNarrow(Wide(row.wide).data(), target.data(), row.capacity));
        EXPECT_EQ(row.narrow, target.c_str()) << row.wide;
        EXPECT_EQ('#', target[row.capacity]);
    }
}

} // namespace
