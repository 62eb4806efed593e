// modules/kernel32/TextFunctions.cpp
//
// Length and comparison of texts.
//
// lstrcmpiW compares words, so texts of different length can be equal. It knows the case of Latin, Greek and
// Cyrillic letters, that a sharp s is "ss", that some characters count for nothing, and that an accented
// letter of the Latin code pages is the letter followed by the accent.
//
// Known differences from Windows: any other character is equal to itself alone; texts are ordered by
// character numbers, not by a language's alphabet.

#include "base/PlatformCall.h"
#include "base/Text.h"

#include <windows.h>

#include <string>
#include <string_view>

using namespace simulated;

namespace
{

constexpr char16_t kSharpS = u'\u00DF';

// Soft hyphen, zero-width non-joiner and joiner, byte order mark.
constexpr std::u16string_view kIgnorable = u"\u00AD\u200C\u200D\uFEFF";

// An accent and the capital letters that have a character of their own with it.
struct Accent
{
    char16_t mark;
    std::u16string_view letters;
    std::u16string_view accented;
};
constexpr Accent kAccents[] = {
    {u'\u0300', u"AEIOU", u"\u00C0\u00C8\u00CC\u00D2\u00D9"},
    {u'\u0301', u"AEIOUY", u"\u00C1\u00C9\u00CD\u00D3\u00DA\u00DD"},
    {u'\u0301', u"CLNRSZ", u"\u0106\u0139\u0143\u0154\u015A\u0179"},
    {u'\u0302', u"AEIOU", u"\u00C2\u00CA\u00CE\u00D4\u00DB"},
    {u'\u0303', u"ANO", u"\u00C3\u00D1\u00D5"},
    {u'\u0304', u"AEIOU", u"\u0100\u0112\u012A\u014C\u016A"},
    {u'\u0306', u"AG", u"\u0102\u011E"},
    {u'\u0307', u"EZ", u"\u0116\u017B"},
    {u'\u0308', u"AEIOUY", u"\u00C4\u00CB\u00CF\u00D6\u00DC\u0178"},
    {u'\u030A', u"AU", u"\u00C5\u016E"},
    {u'\u030B', u"OU", u"\u0150\u0170"},
    {u'\u030C', u"CDENRSTZ", u"\u010C\u010E\u011A\u0147\u0158\u0160\u0164\u017D"},
    {u'\u0327', u"CGKLNRST", u"\u00C7\u0122\u0136\u013B\u0145\u0156\u015E\u0162"},
    {u'\u0328', u"AEIU", u"\u0104\u0118\u012E\u0172"},
};

// What a character counts for in a comparison of words.
std::u16string Counted(wchar_t character)
{
    const char16_t folded = FoldCase(character);
    if (kIgnorable.find(folded) != std::u16string_view::npos)
    {
        return {};
    }
    if (folded == kSharpS)
    {
        return u"SS";
    }
    for (const Accent& accent : kAccents)
    {
        const std::size_t place = accent.accented.find(folded);
        if (place != std::u16string_view::npos)
        {
            return {accent.letters[place], accent.mark};
        }
    }
    return {folded};
}

std::u16string Words(LPCWSTR text)
{
    std::u16string words;
    for (; *text != 0; ++text)
    {
        words += Counted(*text);
    }
    return words;
}

// A null text comes before every other.
int Compare(LPCWSTR left, LPCWSTR right)
{
    if (left == nullptr || right == nullptr)
    {
        return (left != nullptr) - (right != nullptr);
    }
    const int order = Words(left).compare(Words(right));
    return (order > 0) - (order < 0);
}

} // namespace

SIM_API int WINAPI lstrlenW(LPCWSTR text)
{
    PlatformCall call(CallClass::Text, "lstrlenW", SIM_CALLER);
    call.Arguments(text);
    return call.Answer(text == nullptr ? 0 : static_cast<int>(Length(text)));
}

SIM_API int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right)
{
    PlatformCall call(CallClass::Text, "lstrcmpiW", SIM_CALLER);
    call.Arguments(left, right);
    return call.Answer(Compare(left, right));
}
