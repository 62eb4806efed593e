// tests/support/WideText.h
//
// ASCII in wide text and back, for calls of Windows and for comparisons that can show what they compare.
// Plain Win32, for Windows too.
#pragma once

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

/// The text with its terminator.
inline std::vector<wchar_t> Wide(const std::string& text)
{
    std::vector<wchar_t> wide(text.begin(), text.end());
    wide.push_back(0);
    return wide;
}

/// "?" for what isn't ASCII.
inline std::string Narrow(const wchar_t* text, std::size_t length)
{
    std::string narrow;
    std::transform(text, text + length, std::back_inserter(narrow),
                   [](wchar_t unit) { return unit < 0x80 ? static_cast<char>(unit) : '?'; });
    return narrow;
}

inline std::string Narrow(const wchar_t* text)
{
    return Narrow(text, static_cast<std::size_t>(lstrlenW(text)));
}
