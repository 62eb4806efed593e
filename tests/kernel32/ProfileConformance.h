// kernel32/ProfileConformance.h
//
// What the tables on profile files share: the file, its bytes and how they are written in a row, and what
// differs on Wine. Plain Win32, for Windows too.
//
// Wine, on which the Windows build runs in the tests, differs in these ways; a row that meets one of them has
// a last column with what Wine does, and holds it to that:
//  - It writes the whole file anew, with CRLF behind every line and without blank lines; Windows touches only
//    what is changed.
//  - A line that begins with ";" is a key of that name to it, when it is asked for, and one without "=" a key
//    without a value, found before a later line that has one.
//  - Lines before the first section are the section of the empty name to it.
//  - It also knows the marks of UTF-8 and of UTF-16 with the high byte first.
//  - It ignores the case of the letters A to Z alone.
//  - It cuts a quoted value before it takes the quotes off.
//  - It drops the blanks before a value that it writes, and takes a name to be removed with its blanks.
//  - Deleting in a missing file answers TRUE and makes no file.
#pragma once

#include "support/Wine.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>

namespace profile_conformance
{

constexpr const wchar_t* kFile = L"C:\\conformance.ini";

class ProfileConformance : public testing::Test
{
protected:
    void TearDown() override
    {
        DeleteFileW(kFile);
    }
};

/// The text of a row, in which "/" stands for CRLF, as it stands in an ANSI file.
inline std::string Ansi(const std::string& text)
{
    std::string bytes;
    for (const char character : text)
    {
        bytes += character == '/' ? "\r\n" : std::string(1, character);
    }
    return bytes;
}

/// The same in a UTF-16 file, with its mark.
inline std::string Utf16(const std::string& text)
{
    std::string bytes = "\xFF\xFE";
    for (const char character : Ansi(text))
    {
        bytes += character;
        bytes += '\0';
    }
    return bytes;
}

inline void Put(const std::string& text)
{
    const std::string bytes = Ansi(text);
    const HANDLE file =
        CreateFileW(kFile, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    EXPECT_TRUE(WriteFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr));
    EXPECT_TRUE(CloseHandle(file));
}

/// What a row expects where the test runs: Wine's answer, when it has one of its own.
template <class Row>
std::string Expected(const Row& row)
{
    return row.onWine != nullptr && IsWine() ? row.onWine : row.expected;
}

} // namespace profile_conformance
