// modules/kernel32/ModuleFunctions.cpp
//
// LoadLibraryW and its relatives. A name is looked for among the system's modules first, then among the
// native libraries.
//
// Known differences from Windows: the plug-in isn't looked for on drive C, GetModuleHandleW finds a module of
// the system that nobody has loaded, GetModuleHandleExW finds one by an address in it alone, and
// GetProcAddress doesn't tell an unloaded module from a missing entry.

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

Outcome<HMODULE> Find(const std::string& name, Outcome<HMODULE> (*findLibrary)(const std::string& name))
{
    const system_modules::Found found = system_modules::Find(name);
    if (found.isKnown)
    {
        return {found.module,
                static_cast<DWORD>(found.module == nullptr ? ERROR_MOD_NOT_FOUND : ERROR_SUCCESS)};
    }
    return findLibrary(name);
}

Outcome<HMODULE> FindLoaded(const wchar_t* name)
{
    return name == nullptr ? Outcome<HMODULE>{libraries::Executable(), ERROR_SUCCESS}
                           : Find(ToUtf8(name), libraries::FindLoaded);
}

// The module that `address` lies in, with one more reference.
DWORD FindReferenced(DWORD flags, const void* address, HMODULE& module)
{
    if (flags != GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS || address == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    const HMODULE found = libraries::FindByAddress(address);
    if (found == nullptr || !libraries::AddReference(found))
    {
        return ERROR_MOD_NOT_FOUND;
    }
    module = found;
    return ERROR_SUCCESS;
}

Outcome<FARPROC> FindFunction(HMODULE module, const char* nameOrOrdinal)
{
    const HMODULE asked = module == nullptr ? libraries::Executable() : module;
    const bool isNumber = reinterpret_cast<std::uintptr_t>(nameOrOrdinal) <= 0xFFFF;
    FARPROC address = nullptr;
    if (system_modules::IsModule(asked))
    {
        address = system_modules::FindFunction(asked, nameOrOrdinal);
    }
    else if (!isNumber)
    {
        address = libraries::FindFunction(asked, nameOrOrdinal);
    }
    return {address, static_cast<DWORD>(address == nullptr ? ERROR_PROC_NOT_FOUND : ERROR_SUCCESS)};
}

Outcome<DWORD> TellPath(HMODULE module, wchar_t* path, DWORD size)
{
    const HMODULE asked = module == nullptr ? libraries::Executable() : module;
    const bool isSystem = system_modules::IsModule(asked);
    if (!isSystem && !libraries::IsLibrary(asked))
    {
        return {0, ERROR_MOD_NOT_FOUND};
    }
    const auto units = ToUtf16(isSystem ? system_modules::WindowsPath(asked) : libraries::WindowsPath(asked));
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
    return call.Result<HMODULE>(nullptr,
                                [&]() -> Outcome<HMODULE>
                                {
                                    if (name == nullptr || *name == 0)
                                    {
                                        return {nullptr, ERROR_INVALID_PARAMETER};
                                    }
                                    return Find(ToUtf8(name), libraries::Load);
                                });
}

SIM_API BOOL WINAPI FreeLibrary(HMODULE module)
{
    PlatformCall call(CallClass::Module, "FreeLibrary", SIM_CALLER);
    call.Arguments(module);
    return call.Release(
        [&]() -> DWORD
        {
            if (system_modules::IsModule(module))
            {
                return ERROR_SUCCESS;
            }
            if (!libraries::IsLibrary(module))
            {
                return ERROR_MOD_NOT_FOUND;
            }
            libraries::Release(module);
            return ERROR_SUCCESS;
        });
}

SIM_API FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR nameOrOrdinal)
{
    PlatformCall call(CallClass::Module, "GetProcAddress", SIM_CALLER);
    call.Arguments(module, nameOrOrdinal);
    void* const address = call.Result<void*>(nullptr,
                                             [&]() -> Outcome<void*>
                                             {
                                                 const auto found = FindFunction(module, nameOrOrdinal);
                                                 return {reinterpret_cast<void*>(found.value), found.error};
                                             });
    return reinterpret_cast<FARPROC>(address);
}

SIM_API HMODULE WINAPI GetModuleHandleW(LPCWSTR name)
{
    PlatformCall call(CallClass::Module, "GetModuleHandleW", SIM_CALLER);
    call.Arguments(name);
    return call.Result<HMODULE>(nullptr, [&] { return FindLoaded(name); });
}

SIM_API BOOL WINAPI GetModuleHandleExW(DWORD flags, LPCWSTR nameOrAddress, HMODULE* module)
{
    PlatformCall call(CallClass::Module, "GetModuleHandleExW", SIM_CALLER);
    call.Arguments(flags, static_cast<const void*>(nameOrAddress));
    return call.Boolean(
        [&]() -> DWORD
        {
            if (module == nullptr)
            {
                return ERROR_INVALID_PARAMETER;
            }
            *module = nullptr;
            return FindReferenced(flags, nameOrAddress, *module);
        });
}

SIM_API DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size)
{
    PlatformCall call(CallClass::Module, "GetModuleFileNameW", SIM_CALLER);
    call.Arguments(module, size);
    return call.Result<DWORD>(0, [&] { return TellPath(module, path, size); });
}
