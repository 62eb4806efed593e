// machine/Accounts.cpp
//
// Accounts in machine.ini.

#include "machine/Accounts.h"

#include "base/Text.h"
#include "machine/Machine.h"

#include <algorithm>

namespace simulated
{

namespace
{

constexpr std::string_view kSectionBegin = "Account ";

std::string SectionOf(std::string_view name)
{
    return std::string(kSectionBegin) + std::string(name);
}

std::optional<Account> ReadAccount(const std::string& name)
{
    const std::string section = SectionOf(name);
    std::optional<std::string> sid = Machine::Read(section, "Sid");
    if (!sid)
    {
        return std::nullopt;
    }
    return Account{name,
                   Machine::Read(section, "Domain", ""),
                   *sid,
                   Machine::Read(section, "Profile", ""),
                   Machine::ReadNumber(section, "LoggedOn", 0) != 0,
                   Machine::ReadNumber(section, "WellKnown", 0) != 0};
}

// The account with its name as machine.ini spells it.
std::optional<Account> FindSpelled(std::string_view name)
{
    const std::vector<std::string> names = Machine::Sections(kSectionBegin);
    const auto found =
        std::find_if(names.begin(), names.end(),
                     [name](const std::string& spelled) { return EqualIgnoringCase(spelled, name); });
    return found == names.end() ? std::nullopt : ReadAccount(*found);
}

} // namespace

std::vector<Account> Accounts::All()
{
    std::vector<Account> all;
    for (const std::string& name : Machine::Sections(kSectionBegin))
    {
        if (std::optional<Account> account = ReadAccount(name))
        {
            all.push_back(std::move(*account));
        }
    }
    return all;
}

std::optional<Account> Accounts::Find(std::string_view name)
{
    const std::size_t separator = name.find('\\');
    if (separator == std::string_view::npos)
    {
        return FindSpelled(name);
    }
    std::optional<Account> account = FindSpelled(name.substr(separator + 1));
    return account && EqualIgnoringCase(account->domain, name.substr(0, separator)) ? account : std::nullopt;
}

std::optional<Account> Accounts::FindSid(std::string_view sid)
{
    const std::vector<Account> all = All();
    const auto found =
        std::find_if(all.begin(), all.end(),
                     [sid](const Account& account) { return EqualIgnoringCase(sid, account.sid); });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::optional<Account> Accounts::Running()
{
    return Find(Machine::Account());
}

std::string Accounts::RunningSid()
{
    return Machine::Read(SectionOf(Machine::Account()), "Sid", "");
}

bool Accounts::Store(const Account& account)
{
    return Machine::Write(SectionOf(account.name), {{"Sid", account.sid},
                                                    {"Domain", account.domain},
                                                    {"Profile", account.profile},
                                                    {"LoggedOn", account.isLoggedOn ? "1" : "0"},
                                                    {"WellKnown", account.isWellKnown ? "1" : "0"}});
}

bool Accounts::Remove(std::string_view name)
{
    return Machine::Remove(SectionOf(name));
}

} // namespace simulated
