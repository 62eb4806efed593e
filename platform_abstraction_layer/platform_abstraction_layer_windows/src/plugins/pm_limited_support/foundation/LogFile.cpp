// foundation/LogFile.cpp
//
// One line of a log: open, append, close.

#include "foundation/LogFile.h"

#include "foundation/Text.h"

#include <algorithm>
#include <cstdio>

namespace
{

// The longest line of either log, in characters with the terminator.
constexpr std::size_t kLongestLine = 1024;

// No ANSI code page needs more for one character of the basic plane.
constexpr std::size_t kBytesPerCharacter = 3;

} // namespace

namespace logging
{

void AppendLine(const wchar_t* path, const wchar_t* line) noexcept
{
    std::FILE* const file = _wfopen(path, L"ab");
    if (file == nullptr)
    {
        return;
    }
    char bytes[kLongestLine * kBytesPerCharacter];
    const std::size_t size = text::ToNarrow(line, bytes, sizeof bytes);
    const char* const end = bytes + size;
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

} // namespace logging
