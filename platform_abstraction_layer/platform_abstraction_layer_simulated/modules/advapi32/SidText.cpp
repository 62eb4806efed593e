// modules/advapi32/SidText.cpp
//
// SIDs to text and back. What a caller points at may lie at any address, so it is read byte by byte.

#include "modules/advapi32/SidText.h"

#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <limits>

namespace simulated::sids
{

namespace
{

constexpr std::size_t kHeaderSize = offsetof(SID, SubAuthority);
constexpr std::size_t kAuthoritySize = sizeof(SID_IDENTIFIER_AUTHORITY);
constexpr std::uint64_t kHighestAuthority = (std::uint64_t{1} << (8 * kAuthoritySize)) - 1;

// Takes the next number of "1-5-21" off the text, and the hyphen behind it.
bool TakeNumber(std::string_view& text, std::uint64_t highest, std::uint64_t& number)
{
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHexadecimal ? 2 : 0);
    const auto [end, error] =
        std::from_chars(text.data(), text.data() + text.size(), number, isHexadecimal ? 16 : 10);
    if (error != std::errc() || number > highest)
    {
        return false;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    if (text.empty())
    {
        return true;
    }
    const bool goesOn = text.size() > 1 && text.front() == '-';
    text.remove_prefix(1);
    return goesOn;
}

} // namespace

std::optional<std::string> Parse(std::string_view text)
{
    if (!text.starts_with("S-") && !text.starts_with("s-"))
    {
        return std::nullopt;
    }
    text.remove_prefix(2);
    std::uint64_t revision = 0;
    std::uint64_t authority = 0;
    if (!TakeNumber(text, SID_REVISION, revision) || revision != SID_REVISION ||
        !TakeNumber(text, kHighestAuthority, authority))
    {
        return std::nullopt;
    }
    std::string sid(2, static_cast<char>(SID_REVISION));
    for (std::size_t byte = kAuthoritySize; byte != 0; --byte)
    {
        sid += static_cast<char>(authority >> (8 * (byte - 1)));
    }
    std::size_t count = 0;
    for (; !text.empty(); ++count)
    {
        std::uint64_t number = 0;
        if (count == SID_MAX_SUB_AUTHORITIES || !TakeNumber(text, std::numeric_limits<DWORD>::max(), number))
        {
            return std::nullopt;
        }
        const auto subAuthority = static_cast<DWORD>(number);
        sid.append(reinterpret_cast<const char*>(&subAuthority), sizeof subAuthority);
    }
    sid[offsetof(SID, SubAuthorityCount)] = static_cast<char>(count);
    return count == 0 ? std::nullopt : std::optional(sid);
}

std::optional<std::string> Format(const void* sid)
{
    const auto* const bytes = static_cast<const BYTE*>(sid);
    if (bytes == nullptr || bytes[offsetof(SID, Revision)] != SID_REVISION ||
        bytes[offsetof(SID, SubAuthorityCount)] > SID_MAX_SUB_AUTHORITIES)
    {
        return std::nullopt;
    }
    std::uint64_t authority = 0;
    for (std::size_t byte = 0; byte < kAuthoritySize; ++byte)
    {
        authority = authority << 8 | bytes[offsetof(SID, IdentifierAuthority) + byte];
    }
    char number[24];
    std::snprintf(number, sizeof number, authority > std::numeric_limits<DWORD>::max() ? "0x%012llx" : "%llu",
                  static_cast<unsigned long long>(authority));
    std::string text = "S-" + std::to_string(SID_REVISION) + '-' + number;
    for (std::size_t index = 0; index < bytes[offsetof(SID, SubAuthorityCount)]; ++index)
    {
        DWORD subAuthority = 0;
        std::memcpy(&subAuthority, bytes + kHeaderSize + index * sizeof subAuthority, sizeof subAuthority);
        text += '-' + std::to_string(subAuthority);
    }
    return text;
}

} // namespace simulated::sids
