// kernel32/ObjectNames.cpp
//
// Names of kernel objects as file names.

#include "kernel32/ObjectNames.h"

#include "notebook/Text.h"

#include <cstdio>
#include <string_view>

namespace simulated
{

namespace
{

struct Namespace
{
    std::string_view prefix;
    std::string_view filePrefix;
};

// All processes of the notebook are in one session, so a name without a prefix is a local one.
constexpr Namespace kNamespaces[] = {{"Global\\", "global."}, {"Local\\", "local."}, {"", "local."}};

constexpr std::size_t kLongestFileName = 200;

bool StaysAsItIs(char byte) noexcept
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_' || byte == '.';
}

void AppendHex(std::string& text, const char* format, unsigned long long value)
{
    char digits[24];
    std::snprintf(digits, sizeof digits, format, value);
    text += digits;
}

std::string Encode(std::string_view name)
{
    std::string encoded;
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a
    for (const char byte : name)
    {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
        if (StaysAsItIs(byte))
        {
            encoded += byte;
        }
        else
        {
            AppendHex(encoded, "%%%02llX", static_cast<unsigned char>(byte));
        }
    }
    if (encoded.size() > kLongestFileName)
    {
        encoded.resize(kLongestFileName);
        AppendHex(encoded, "~%016llX", hash);
    }
    return encoded;
}

} // namespace

Outcome<std::string> ObjectFileName(const wchar_t* name)
{
    if (name == nullptr)
    {
        return {{}, ERROR_INVALID_PARAMETER};
    }
    if (Length(name) > MAX_PATH)
    {
        return {{}, ERROR_FILENAME_EXCED_RANGE};
    }
    const std::string text = ToUtf8(name);
    const Namespace* space = kNamespaces;
    while (!text.starts_with(space->prefix))
    {
        ++space;
    }
    const std::string_view plain = std::string_view(text).substr(space->prefix.size());
    if (plain.empty() || plain.find('\\') != std::string_view::npos)
    {
        return {{}, ERROR_PATH_NOT_FOUND};
    }
    return {std::string(space->filePrefix) + Encode(plain), ERROR_SUCCESS};
}

} // namespace simulated
