// machine/Accounts.h
//
// The accounts of the machine: one section "Account <name>" of machine.ini for each, with the keys "Sid",
// "Domain", "Profile" (a folder on drive C), "LoggedOn" and "WellKnown". An account that is logged on has its
// hive below HKEY_USERS. The service accounts always are.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace simulated
{

struct Account
{
    std::string name;
    std::string domain;
    std::string sid;     ///< "S-1-5-..."
    std::string profile; ///< empty for an account that never logged on
    bool isLoggedOn = false;
    bool isWellKnown = false; ///< one of the system's own
};

class Accounts
{
public:
    /// In the order of machine.ini.
    static std::vector<Account> All();

    /// The account `name`, with or without its domain in front. Case doesn't matter.
    static std::optional<Account> Find(std::string_view name);
    static std::optional<Account> FindSid(std::string_view sid);

    /// The account that this process runs as; nothing when the machine doesn't know it.
    static std::optional<Account> Running();

    /// Its SID alone, needed for every access to HKEY_CURRENT_USER; empty for an unknown account.
    static std::string RunningSid();

    /// Adds an account, or changes the one of that name.
    [[nodiscard]] static bool Store(const Account& account);
    [[nodiscard]] static bool Remove(std::string_view name);
};

} // namespace simulated
