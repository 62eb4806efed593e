// modules/kernel32/ModuleFunctions.cpp
//
// LoadLibraryW and its relatives. A name is looked for among the system's modules first, then among the
// native libraries.
//
// Known differences from Windows: the plug-in isn't looked for on drive C, GetModuleHandleW finds a module of
// the system that nobody has loaded, GetModuleHandleExW finds one by an address in it alone, only a module of
// the system has a path, and GetProcAddress reports an unloaded module as a missing entry.

#include "base/Text.h"
#include "modules/kernel32/NativeLibraries.h"
#include "modules/kernel32/SystemModules.h"
#include "modules/kernel32/SystemVersion.h"

#include <windows.h>

#include <algorithm>

namespace simulated
{

namespace
{

// The first major version whose GetModuleFileNameW ends a cut path with a zero and an error.
constexpr DWORD kTerminatesCutPaths = 6;

Outcome<HMODULE> Find(const wchar_t* name, Outcome<HMODULE> (*findLibrary)(const std::string& name))
{
    const std::string text = ToUtf8(name);
    const std::optional<HMODULE> found = system_modules::Find(text);
    if (!found)
    {
        return findLibrary(text);
    }
    return {*found, static_cast<DWORD>(*found == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_SUCCESS)};
}

Outcome<DWORD> TellPath(HMODULE module, wchar_t* path, DWORD size)
{
    if (!system_modules::IsModule(module))
    {
        return {0, ERROR_MOD_NOT_FOUND};
    }
    const auto units = ToUtf16(system_modules::WindowsPath(module));
    const auto length = static_cast<DWORD>(units.size());
    std::copy_n(units.begin(), std::min(length, size), path);
    if (length < size)
    {
        path[length] = 0;
        return {length, ERROR_SUCCESS};
    }
    if (ReadSystemVersion().major < kTerminatesCutPaths)
    {
        return {size, ERROR_SUCCESS};
    }
    if (size > 0)
    {
        path[size - 1] = 0;
    }
    return {size, ERROR_INSUFFICIENT_BUFFER};
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HMODULE WINAPI LoadLibraryW(LPCWSTR name)
{
    PlatformCall call(CallClass::Module, "LoadLibraryW", SIM_CALLER);
    call.Arguments(name);
    return call.Result<HMODULE>(nullptr, [&] { return Find(name, libraries::Load); });
}

SIM_API BOOL WINAPI FreeLibrary(HMODULE module)
{
    PlatformCall call(CallClass::Module, "FreeLibrary", SIM_CALLER);
    call.Arguments(module);
    return call.Release(
        [&]() -> DWORD
        {
            const bool isFreed = system_modules::IsModule(module) || libraries::Release(module);
            return isFreed ? ERROR_SUCCESS : ERROR_MOD_NOT_FOUND;
        });
}

SIM_API FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR nameOrOrdinal)
{
    PlatformCall call(CallClass::Module, "GetProcAddress", SIM_CALLER);
    call.Arguments(module, nameOrOrdinal);
    void* const address = call.Result<void*>(
        nullptr,
        [&]() -> Outcome<void*>
        {
            const FARPROC found = system_modules::IsModule(module)
                                      ? system_modules::FindFunction(module, nameOrOrdinal)
                                      : libraries::FindFunction(module, nameOrOrdinal);
            return {reinterpret_cast<void*>(found),
                    static_cast<DWORD>(found == nullptr ? ERROR_PROC_NOT_FOUND : ERROR_SUCCESS)};
        });
    return reinterpret_cast<FARPROC>(address);
}

SIM_API HMODULE WINAPI GetModuleHandleW(LPCWSTR name)
{
    PlatformCall call(CallClass::Module, "GetModuleHandleW", SIM_CALLER);
    call.Arguments(name);
    return call.Result<HMODULE>(nullptr, [&] { return Find(name, libraries::FindLoaded); });
}

SIM_API BOOL WINAPI GetModuleHandleExW(DWORD flags, LPCWSTR nameOrAddress, HMODULE* module)
{
    PlatformCall call(CallClass::Module, "GetModuleHandleExW", SIM_CALLER);
    call.Arguments(flags, static_cast<const void*>(nameOrAddress));
    return call.Boolean(
        [&]() -> DWORD
        {
            if (module == nullptr || flags != GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS)
            {
                return ERROR_INVALID_PARAMETER;
            }
            *module = libraries::AddReference(nameOrAddress);
            return *module != nullptr ? ERROR_SUCCESS : ERROR_MOD_NOT_FOUND;
        });
}

SIM_API DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size)
{
    PlatformCall call(CallClass::Module, "GetModuleFileNameW", SIM_CALLER);
    call.Arguments(module, size);
    return call.Result<DWORD>(0, [&] { return TellPath(module, path, size); });
}
