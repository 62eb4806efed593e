// modules/advapi32/Tokens.cpp
//
// Tokens and privileges.
//
// Known differences from Windows: a process has one token for its account, which every OpenProcessToken
// opens; few privileges exist; access to one's own token is never refused;
// privileges can't be switched off all at once, and their previous state isn't reported.

#include "modules/advapi32/Tokens.h"

#include "base/HandleTable.h"
#include "base/Text.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <map>
#include <mutex>
#include <vector>

namespace simulated::tokens
{

namespace
{

// A privilege and the number that stands for it in a LUID, the same on every machine.
struct Privilege
{
    std::string_view name;
    DWORD number;
    bool isForServices; ///< the lesser service accounts have it too
};
constexpr Privilege kPrivileges[] = {
    {"SeSecurityPrivilege", 8, false},    {"SeLoadDriverPrivilege", 10, false},
    {"SeSystemtimePrivilege", 12, false}, {"SeBackupPrivilege", 17, false},
    {"SeRestorePrivilege", 18, false},    {"SeShutdownPrivilege", 19, true},
    {"SeDebugPrivilege", 20, false},      {"SeChangeNotifyPrivilege", 23, true},
};
constexpr std::string_view kAlwaysEnabled = "SeChangeNotifyPrivilege";

// The attributes of each privilege of the table.
using Attributes = std::map<DWORD, DWORD>;

struct TokenTable
{
    std::mutex mutex;
    std::map<std::string, Attributes> tokens; ///< by account
};

// Never destroyed: threads may outlive the library's teardown.
TokenTable& TheTokenTable()
{
    static TokenTable& state = *new TokenTable;
    return state;
}

class Token : public Object
{
public:
    Token(std::string account, DWORD access)
        : Object(ObjectKind::Token), m_account(std::move(account)), m_access(access)
    {
    }

    const std::string& Account() const noexcept
    {
        return m_account;
    }
    bool Allows(DWORD rights) const noexcept
    {
        return (m_access & rights) == rights;
    }

private:
    std::string m_account;
    DWORD m_access;
};

bool IsLesserService(const std::string& name)
{
    const std::optional<Account> account = Accounts::Find(name);
    return account && account->isWellKnown && account->sid != "S-1-5-18";
}

// The token of an account; the lock must be held.
Attributes& AttributesOf(const std::string& account)
{
    const auto [place, isNew] = TheTokenTable().tokens.try_emplace(FoldCase(account));
    if (isNew)
    {
        const bool isLesser = IsLesserService(account);
        for (const Privilege& privilege : kPrivileges)
        {
            if (privilege.isForServices || !isLesser)
            {
                place->second[privilege.number] = privilege.name == kAlwaysEnabled
                                                      ? SE_PRIVILEGE_ENABLED | SE_PRIVILEGE_ENABLED_BY_DEFAULT
                                                      : 0;
            }
        }
    }
    return place->second;
}

const Privilege* FindPrivilege(std::string_view name)
{
    const auto* const found =
        std::find_if(std::begin(kPrivileges), std::end(kPrivileges),
                     [name](const Privilege& privilege) { return EqualIgnoringCase(privilege.name, name); });
    return found == std::end(kPrivileges) ? nullptr : found;
}

// The privileges that the caller wants changed. The record may be unaligned.
std::vector<LUID_AND_ATTRIBUTES> Wanted(const TOKEN_PRIVILEGES* wanted)
{
    DWORD count = 0;
    std::memcpy(&count, wanted, sizeof count);
    std::vector<LUID_AND_ATTRIBUTES> rows(count);
    if (count != 0)
    {
        std::memcpy(rows.data(),
                    reinterpret_cast<const BYTE*>(wanted) + offsetof(TOKEN_PRIVILEGES, Privileges),
                    count * sizeof(LUID_AND_ATTRIBUTES));
    }
    return rows;
}

// Switches the privileges that are held; `error` reports that one wasn't.
void Switch(Attributes& token, const std::vector<LUID_AND_ATTRIBUTES>& wanted, DWORD& error)
{
    for (const LUID_AND_ATTRIBUTES& row : wanted)
    {
        const auto held = token.find(row.Luid.LowPart);
        if (held == token.end() || row.Luid.HighPart != 0)
        {
            error = ERROR_NOT_ALL_ASSIGNED;
        }
        else if ((row.Attributes & SE_PRIVILEGE_REMOVED) != 0)
        {
            token.erase(held);
        }
        else
        {
            held->second = (held->second & ~static_cast<DWORD>(SE_PRIVILEGE_ENABLED)) |
                           (row.Attributes & SE_PRIVILEGE_ENABLED);
        }
    }
}

// TRUE with an error number beside it, or FALSE.
Outcome<BOOL> Adjust(HANDLE handle, const TOKEN_PRIVILEGES* wanted)
{
    const std::shared_ptr<Token> token = HandleTable::Find<Token>(handle);
    if (token == nullptr)
    {
        return {FALSE, ERROR_INVALID_HANDLE};
    }
    if (!token->Allows(TOKEN_ADJUST_PRIVILEGES))
    {
        return {FALSE, ERROR_ACCESS_DENIED};
    }
    const std::lock_guard lock(TheTokenTable().mutex);
    DWORD error = ERROR_SUCCESS;
    Switch(AttributesOf(token->Account()), Wanted(wanted), error);
    return {TRUE, error};
}

DWORD Lookup(LPCWSTR name, PLUID luid)
{
    const Privilege* const found = name == nullptr ? nullptr : FindPrivilege(ToUtf8(name));
    if (found == nullptr)
    {
        return ERROR_NO_SUCH_PRIVILEGE;
    }
    if (luid == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *luid = {found->number, 0};
    return ERROR_SUCCESS;
}

DWORD OpenOwn(HANDLE process, DWORD access, PHANDLE token, const PlatformCall& call)
{
    if (process != GetCurrentProcess())
    {
        return ERROR_INVALID_HANDLE;
    }
    if (token == nullptr)
    {
        return ERROR_NOACCESS;
    }
    *token = HandleTable::Insert(std::make_shared<Token>(Machine::Account(), access), call);
    return ERROR_SUCCESS;
}

} // namespace

bool IsEnabled(std::string_view privilege)
{
    const Privilege* const known = FindPrivilege(privilege);
    const std::lock_guard lock(TheTokenTable().mutex);
    const Attributes& attributes = AttributesOf(Machine::Account());
    const auto held = known == nullptr ? attributes.end() : attributes.find(known->number);
    return held != attributes.end() && (held->second & SE_PRIVILEGE_ENABLED) != 0;
}

void Reset()
{
    const std::lock_guard lock(TheTokenTable().mutex);
    TheTokenTable().tokens.clear();
}

} // namespace simulated::tokens

using namespace simulated;

SIM_API BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token)
{
    PlatformCall call(CallClass::Account, "OpenProcessToken", SIM_CALLER);
    call.Arguments(access);
    return call.Boolean([&] { return tokens::OpenOwn(process, access, token, call); });
}

SIM_API BOOL WINAPI LookupPrivilegeValueW(LPCWSTR system, LPCWSTR name, PLUID luid)
{
    PlatformCall call(CallClass::Account, "LookupPrivilegeValueW", SIM_CALLER);
    call.Arguments(system, name);
    return call.Boolean([&] { return tokens::Lookup(name, luid); });
}

SIM_API BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES wanted, DWORD,
                                          PTOKEN_PRIVILEGES previous, PDWORD)
{
    PlatformCall call(CallClass::Account, "AdjustTokenPrivileges", SIM_CALLER);
    call.Arguments(token, disableAll);
    return call.Result<BOOL>(
        FALSE,
        [&]() -> Outcome<BOOL>
        {
            // On success the last error says whether all were switched, so it is set then too.
            SetLastError(ERROR_SUCCESS);
            const bool isKnown = disableAll == FALSE && wanted != nullptr && previous == nullptr;
            return isKnown ? tokens::Adjust(token, wanted) : Outcome<BOOL>{FALSE, ERROR_INVALID_PARAMETER};
        });
}
