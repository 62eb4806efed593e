// modules/advapi32/Hives.cpp
//
// Where hives lie, how they are read and changed, and where they are loaded.

#include "modules/advapi32/Hives.h"

#include "base/Text.h"
#include "machine/CachedFile.h"
#include "machine/Machine.h"

#include <winerror.h>

#include <algorithm>
#include <cerrno>

namespace simulated::hives
{

namespace
{

using registry::Hive;

constexpr std::string_view kFileBegin = "hive=";
constexpr std::string_view kHivesSection = "Hives";

// Each hive that this process has looked at. Never destroyed: threads may outlive the library's teardown.
CachedFile<Hive>& Cached(std::string_view hive)
{
    static std::mutex& mutex = *new std::mutex;
    static auto& hives = *new std::map<std::string, CachedFile<Hive>, std::less<>>;
    const std::lock_guard lock(mutex);
    const auto known = hives.find(hive);
    return known == hives.end() ? hives.try_emplace(std::string(hive), PartOf(hive)).first->second
                                : known->second;
}

// HKEY_USERS as a hive.
Hive Users()
{
    Hive users("HKEY_USERS");
    for (const std::string& subKey : Machine::Keys(kHivesSection))
    {
        users.Make(subKey);
    }
    return users;
}

DWORD WriteError()
{
    switch (errno)
    {
    case EACCES:
    case EPERM:
    case EROFS:
        return ERROR_ACCESS_DENIED;
    case ENOSPC:
        return ERROR_DISK_FULL;
    default:
        return ERROR_CANTWRITE;
    }
}

} // namespace

std::string PartOf(std::string_view hive)
{
    return "registry/" + std::string(hive) + ".reg";
}

std::string FileOf(std::string_view hive)
{
    return Machine::PathOf(PartOf(hive));
}

DWORD Read(std::string_view hive, const std::function<DWORD(const Hive& content)>& look)
{
    return hive.empty() ? look(Users()) : Cached(hive).Read(std::cref(look));
}

DWORD Edit(std::string_view hive, const std::function<DWORD(Hive& content)>& change)
{
    if (hive.empty())
    {
        Hive users = Users();
        const DWORD error = change(users);
        return error == ERROR_SUCCESS ? ERROR_ACCESS_DENIED : error;
    }
    DWORD error = ERROR_SUCCESS;
    const bool done = Cached(hive).Edit(
        [&](Hive& content)
        {
            error = change(content);
            return error == ERROR_SUCCESS;
        });
    return done ? error : WriteError();
}

std::string FileText(std::string_view hive)
{
    return std::string(kFileBegin) + std::string(hive) + '\n';
}

std::optional<std::string> ParseFileText(std::string_view text)
{
    if (!text.starts_with(kFileBegin))
    {
        return std::nullopt;
    }
    text.remove_prefix(kFileBegin.size());
    return std::string(text.substr(0, text.find_first_of("\r\n")));
}

bool Load(std::string_view subKey, std::string_view hive)
{
    return Machine::Write(kHivesSection, subKey, hive);
}

bool Unload(std::string_view subKey)
{
    return Machine::Remove(kHivesSection, subKey);
}

std::string Loaded(std::string_view subKey)
{
    return Machine::Read(kHivesSection, subKey, "");
}

bool IsLoaded(std::string_view hive)
{
    const std::vector<std::string> subKeys = Machine::Keys(kHivesSection);
    return std::any_of(subKeys.begin(), subKeys.end(),
                       [hive](const std::string& subKey) { return EqualIgnoringCase(Loaded(subKey), hive); });
}

std::shared_ptr<FileLock> Use(std::string_view hive, FileLock::Kind kind)
{
    return std::make_shared<FileLock>(FileOf(hive) + ".use", kind);
}

} // namespace simulated::hives
