// advapi32/Hives.cpp
//
// Where hives lie, and the links that load them.

#include "advapi32/Hives.h"

#include "advapi32/RegistryNames.h"
#include "notebook/HostFiles.h"
#include "notebook/Machine.h"
#include "notebook/Text.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <unistd.h>

namespace simulated::hives
{

namespace
{

constexpr std::string_view kFileBegin = "hive=";
constexpr std::string_view kLinkBegin = "../hives/";

std::string LinkPath(std::string_view subKey)
{
    return UsersRoot() + '/' + registry::KeyFileName(subKey);
}

} // namespace

std::string MachineRoot()
{
    return Machine::PathOf("registry/HKEY_LOCAL_MACHINE");
}

std::string UsersRoot()
{
    return Machine::PathOf("registry/HKEY_USERS");
}

std::string WritersLock()
{
    return Machine::PathOf("registry/writers");
}

std::string FolderOf(std::string_view hive)
{
    return Machine::PathOf("registry/hives") + '/' + registry::KeyFileName(hive);
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

bool Link(std::string_view subKey, std::string_view hive)
{
    return host_files::Link(LinkPath(subKey), std::string(kLinkBegin) + registry::KeyFileName(hive));
}

bool Unlink(std::string_view subKey)
{
    return unlink(LinkPath(subKey).c_str()) == 0 || errno == ENOENT;
}

std::string BehindLink(std::string_view subKey)
{
    std::error_code error;
    const std::string target = std::filesystem::read_symlink(LinkPath(subKey), error).string();
    return target.starts_with(kLinkBegin) ? registry::KeyName(target.substr(kLinkBegin.size()))
                                          : std::string();
}

bool IsLoaded(std::string_view hive)
{
    const std::vector<registry::Entry> links = registry::List(UsersRoot(), registry::EntryKind::Key);
    return std::any_of(links.begin(), links.end(),
                       [hive](const registry::Entry& link)
                       { return EqualIgnoringCase(BehindLink(link.name), hive); });
}

} // namespace simulated::hives
