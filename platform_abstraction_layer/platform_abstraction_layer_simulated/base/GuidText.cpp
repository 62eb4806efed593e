// base/GuidText.cpp
//
// GUIDs to text and back.

#include "base/GuidText.h"

#include "base/Text.h"

#include <cstdio>
#include <cstring>

namespace simulated
{

std::string ToText(const GUID& guid)
{
    char text[sizeof "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}"];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", guid.Data1,
                  guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1], guid.Data4[2], guid.Data4[3],
                  guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return text;
}

std::optional<GUID> ParseGuid(std::string_view text)
{
    GUID guid = {};
    BYTE* const last = guid.Data4;
    std::sscanf(std::string(text).c_str(), "{%8x-%4hx-%4hx-%2hhx%2hhx-%2hhx%2hhx%2hhx%2hhx%2hhx%2hhx}",
                &guid.Data1, &guid.Data2, &guid.Data3, &last[0], &last[1], &last[2], &last[3], &last[4],
                &last[5], &last[6], &last[7]);
    // Only the canonical form counts as a GUID.
    return EqualIgnoringCase(ToText(guid), text) ? std::optional(guid) : std::nullopt;
}

bool IsSame(const GUID& left, const GUID& right)
{
    return std::memcmp(&left, &right, sizeof left) == 0;
}

} // namespace simulated
