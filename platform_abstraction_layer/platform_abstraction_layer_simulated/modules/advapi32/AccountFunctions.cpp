// modules/advapi32/AccountFunctions.cpp
//
// Accounts by name, SIDs as text.
//
// Known differences from Windows: no groups and no other machines; a name with a machine that isn't this one
// isn't found.

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"
#include "modules/advapi32/SidText.h"
#include "modules/kernel32/LocalMemory.h"

#include <cstring>
#include <sddl.h>

namespace simulated
{

namespace
{

struct AccountBuffers
{
    PSID sid;
    LPDWORD sidSize; ///< in bytes
    LPWSTR domain;
    LPDWORD domainSize; ///< in characters
    PSID_NAME_USE use;
};

DWORD LookUp(LPCWSTR name, const AccountBuffers& buffers)
{
    if (buffers.sidSize == nullptr || buffers.domainSize == nullptr || buffers.use == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::optional<Account> account =
        name == nullptr || *name == 0 ? std::nullopt : Accounts::Find(ToUtf8(name));
    const std::optional<std::string> sid = account ? sids::Parse(account->sid) : std::nullopt;
    if (!sid)
    {
        return ERROR_NONE_MAPPED;
    }
    const auto domainLength = static_cast<DWORD>(ToUtf16(account->domain).size());
    const bool fits = buffers.sid != nullptr && *buffers.sidSize >= sid->size() &&
                      buffers.domain != nullptr && *buffers.domainSize > domainLength;
    *buffers.sidSize = static_cast<DWORD>(sid->size());
    *buffers.domainSize = domainLength + (fits ? 0 : 1);
    if (!fits)
    {
        return ERROR_INSUFFICIENT_BUFFER;
    }
    std::memcpy(buffers.sid, sid->data(), sid->size());
    CopyToUtf16(account->domain, buffers.domain, domainLength + 1);
    *buffers.use = account->isWellKnown ? SidTypeWellKnownGroup : SidTypeUser;
    return ERROR_SUCCESS;
}

DWORD CopyUserName(LPWSTR name, LPDWORD size)
{
    if (size == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::string account = Machine::Account();
    const auto needed = static_cast<DWORD>(ToUtf16(account).size() + 1);
    const bool fits = name != nullptr && *size >= needed;
    *size = needed;
    return fits && CopyToUtf16(account, name, needed) ? ERROR_SUCCESS : ERROR_INSUFFICIENT_BUFFER;
}

DWORD SidToText(PSID sid, LPWSTR* text, const PlatformCall& call)
{
    if (text == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const std::optional<std::string> formatted = sids::Format(sid);
    if (!formatted)
    {
        return ERROR_INVALID_SID;
    }
    auto* const block = static_cast<LPWSTR>(AllocateLocal((formatted->size() + 1) * sizeof(wchar_t), call));
    if (block == nullptr)
    {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    CopyToUtf16(*formatted, block, formatted->size() + 1);
    *text = block;
    return ERROR_SUCCESS;
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API BOOL WINAPI LookupAccountNameW(LPCWSTR system, LPCWSTR account, PSID sid, LPDWORD sidSize,
                                       LPWSTR domain, LPDWORD domainSize, PSID_NAME_USE use)
{
    PlatformCall call(CallClass::Account, "LookupAccountNameW", SIM_CALLER);
    call.Arguments(system, account);
    return call.Boolean([&] { return LookUp(account, {sid, sidSize, domain, domainSize, use}); });
}

SIM_API BOOL WINAPI GetUserNameW(LPWSTR name, LPDWORD size)
{
    PlatformCall call(CallClass::Account, "GetUserNameW", SIM_CALLER);
    return call.Boolean([&] { return CopyUserName(name, size); });
}

SIM_API BOOL WINAPI ConvertSidToStringSidW(PSID sid, LPWSTR* text)
{
    PlatformCall call(CallClass::Account, "ConvertSidToStringSidW", SIM_CALLER);
    return call.Boolean([&] { return SidToText(sid, text, call); });
}
