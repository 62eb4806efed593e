// foundation/Log.cpp
//
// One line of a log: format, open, append, close.

#include "foundation/Log.h"

#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace
{

// The longest line of either log, in characters with the terminator.
constexpr std::size_t kLongestLine = 1024;

// No ANSI code page needs more for one character of the basic plane.
constexpr std::size_t kBytesPerCharacter = 3;

// Appends a line of at most `capacity` characters to the file `path`, in the ANSI code page, with "?" for
// what that lacks and CR LF for each newline and at the end.
void AppendLine(const wchar_t* path, std::size_t capacity, const wchar_t* format, va_list arguments) noexcept
{
    wchar_t line[kLongestLine];
    text::FormatV(line, capacity, format, arguments);
    std::FILE* const file = _wfopen(path, L"ab");
    if (file == nullptr)
    {
        return;
    }
    char bytes[kLongestLine * kBytesPerCharacter];
    const char* const end = bytes + text::ToNarrow(line, bytes, sizeof bytes);
    for (const char* begin = bytes; begin != end;)
    {
        const char* const lineEnd = std::find(begin, end, '\n');
        std::fwrite(begin, 1, static_cast<std::size_t>(lineEnd - begin), file);
        if (lineEnd == end)
        {
            break;
        }
        std::fwrite("\r\n", 1, 2, file);
        begin = lineEnd + 1;
    }
    std::fwrite("\r\n", 1, 2, file);
    std::fclose(file);
}

} // namespace

void PmLog(const wchar_t* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    AppendLine(L"C:/temp1234567890/trxpm.log", 256, format, arguments);
    va_end(arguments);
}

void CORVLBase::DBGOUT(const wchar_t* format, ...) noexcept
{
    va_list arguments;
    va_start(arguments, format);
    AppendLine(L"C:/temp1234567890/orvl.log", kLongestLine, format, arguments);
    va_end(arguments);
}

void LogFailure(const wchar_t* text) noexcept
{
    if (text != nullptr)
    {
        CORVLBase::DBGOUT(text, GetLastError());
    }
}
