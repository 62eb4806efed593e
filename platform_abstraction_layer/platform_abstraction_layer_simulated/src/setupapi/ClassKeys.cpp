// setupapi/ClassKeys.cpp
//
// The registry keys of setup and interface classes, where the drivers of a class keep their settings.

#include "advapi32/RegistryKey.h"
#include "notebook/GuidText.h"
#include "notebook/PlatformCall.h"

#include <setupapi.h>

#include <algorithm>
#include <iterator>

namespace simulated
{

namespace
{

const HKEY kNoKey = static_cast<HKEY>(INVALID_HANDLE_VALUE);

// Where the keys of one kind of class lie, and what it is called when a class has none.
struct ClassKind
{
    DWORD flag;
    const char* path;
    DWORD missing;
};

constexpr ClassKind kKinds[] = {
    {DIOCR_INSTALLER, "SYSTEM\\CurrentControlSet\\Control\\Class", ERROR_INVALID_CLASS},
    {DIOCR_INTERFACE, "SYSTEM\\CurrentControlSet\\Control\\DeviceClasses", ERROR_NO_SUCH_INTERFACE_CLASS},
};

Outcome<HKEY> OpenClassKey(const GUID* classGuid, REGSAM access, DWORD flags, PCWSTR machine,
                           const PlatformCall& call)
{
    const auto* const kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                          [&](const ClassKind& row) { return row.flag == flags; });
    if (kind == std::end(kKinds))
    {
        return {kNoKey, ERROR_INVALID_FLAGS};
    }
    if (machine != nullptr)
    {
        return {kNoKey, ERROR_INVALID_MACHINENAME};
    }
    registry::Base base;
    std::shared_ptr<registry::Key> key;
    const std::string path =
        classGuid == nullptr ? std::string(kind->path) : std::string(kind->path) + '\\' + ToText(*classGuid);
    DWORD error = registry::FindBase(HKEY_LOCAL_MACHINE, base);
    error = error == ERROR_SUCCESS ? registry::Open(base, path, access, key) : error;
    if (error != ERROR_SUCCESS)
    {
        return {kNoKey, error == ERROR_FILE_NOT_FOUND ? kind->missing : error};
    }
    return {static_cast<HKEY>(HandleTable::Insert(key, call))};
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HKEY WINAPI SetupDiOpenClassRegKeyExW(const GUID* classGuid, REGSAM access, DWORD flags,
                                              PCWSTR machine, PVOID)
{
    PlatformCall call(CallClass::Device, "SetupDiOpenClassRegKeyExW", SIM_CALLER);
    call.Arguments(classGuid == nullptr ? "null" : ToText(*classGuid).c_str(), access, flags);
    return call.Result<HKEY>(kNoKey, [&] { return OpenClassKey(classGuid, access, flags, machine, call); });
}
