// modules/setupapi/ClassKeys.cpp
//
// The registry keys of setup classes, where the drivers of a class keep their settings.

#include "base/GuidText.h"
#include "base/PlatformCall.h"
#include "modules/advapi32/RegistryKey.h"

#include <setupapi.h>

namespace simulated
{

namespace
{

const HKEY kNoKey = static_cast<HKEY>(INVALID_HANDLE_VALUE);

constexpr const char* kClassKeys = "SYSTEM\\CurrentControlSet\\Control\\Class\\";

Outcome<HKEY> OpenClassKey(const GUID* classGuid, REGSAM access, DWORD flags, PCWSTR machine,
                           const PlatformCall& call)
{
    if (flags != DIOCR_INSTALLER || machine != nullptr || classGuid == nullptr)
    {
        return {kNoKey, ERROR_INVALID_PARAMETER};
    }
    registry::Base base;
    std::shared_ptr<registry::Key> key;
    DWORD error = registry::FindBase(HKEY_LOCAL_MACHINE, base);
    error =
        error == ERROR_SUCCESS ? registry::Open(base, kClassKeys + ToText(*classGuid), access, key) : error;
    if (error != ERROR_SUCCESS)
    {
        return {kNoKey, error == ERROR_FILE_NOT_FOUND ? DWORD{ERROR_INVALID_CLASS} : error};
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
