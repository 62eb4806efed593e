// support/WideText.h
//
// UTF-8 in wide text and back, for calls of Windows and for comparisons that can show what they compare.
// Plain Win32, for Windows too.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

/// The text with its terminator. Neither function touches the last error.
inline std::vector<wchar_t> Wide(std::string_view text)
{
    const std::string terminated(text);
    const auto size = static_cast<int>(text.size()) + 1;
    std::vector<wchar_t> wide(terminated.size() + 1);
    MultiByteToWideChar(CP_UTF8, 0, terminated.c_str(), size, wide.data(), size);
    return wide;
}

inline std::string Utf8(const wchar_t* text)
{
    const int length = lstrlenW(text) + 1;
    std::string narrow(static_cast<std::size_t>(length) * 3, '\0');
    const int size =
        WideCharToMultiByte(CP_UTF8, 0, text, length, narrow.data(), length * 3, nullptr, nullptr);
    narrow.resize(static_cast<std::size_t>(size) - 1);
    return narrow;
}
