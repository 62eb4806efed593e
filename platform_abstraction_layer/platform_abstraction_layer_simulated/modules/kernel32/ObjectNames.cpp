// modules/kernel32/ObjectNames.cpp
//
// Names of kernel objects as file names.

#include "modules/kernel32/ObjectNames.h"

#include "base/Text.h"

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

std::string Encode(std::string_view name)
{
    std::string encoded;
    for (const char byte : name)
    {
        if (StaysAsItIs(byte))
        {
            encoded += byte;
        }
        else
        {
            char digits[4];
            std::snprintf(digits, sizeof digits, "%%%02X", static_cast<unsigned char>(byte));
            encoded += digits;
        }
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
    const std::string file = std::string(space->filePrefix) + Encode(plain);
    return {file,
            static_cast<DWORD>(file.size() > kLongestFileName ? ERROR_FILENAME_EXCED_RANGE : ERROR_SUCCESS)};
}

void NoteSecurity(PlatformCall& call, const SECURITY_ATTRIBUTES* attributes)
{
    if (attributes != nullptr)
    {
        const std::string size = attributes->nLength == sizeof *attributes ? "" : "of a wrong size, ";
        const std::string shown = size +
                                  (attributes->lpSecurityDescriptor == nullptr ? "default" : "descriptor") +
                                  (attributes->bInheritHandle != FALSE ? ", inherited" : "");
        call.Arguments(shown.c_str());
    }
}

} // namespace simulated
