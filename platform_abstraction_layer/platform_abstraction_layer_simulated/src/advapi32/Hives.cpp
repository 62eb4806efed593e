// advapi32/Hives.cpp
//
// Where hives lie, and the links that load them.

#include "advapi32/Hives.h"

#include "advapi32/RegistryNames.h"
#include "notebook/HostFiles.h"
#include "notebook/Machine.h"

#include <cerrno>
#include <unistd.h>

namespace simulated::hives
{

namespace
{

constexpr std::string_view kFileBegin = "hive=";

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

std::string FolderOf(std::string_view hive)
{
    return Machine::PathOf("registry/hives") + '/' + registry::KeyFileName(hive);
}

std::string FileText(std::string_view hive)
{
    return std::string(kFileBegin) + std::string(hive) + '\n';
}

bool Link(std::string_view subKey, std::string_view hive)
{
    return host_files::Link(LinkPath(subKey), "../hives/" + registry::KeyFileName(hive));
}

bool Unlink(std::string_view subKey)
{
    return unlink(LinkPath(subKey).c_str()) == 0 || errno == ENOENT;
}

} // namespace simulated::hives
