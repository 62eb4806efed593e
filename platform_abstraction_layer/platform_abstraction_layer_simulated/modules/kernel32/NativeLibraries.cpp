// modules/kernel32/NativeLibraries.cpp
//
// Modules that are native libraries, through the native loader. The loader's own counts are the only ones.
//
// Known differences from Windows: a native library exports nothing by number, and the program is no module.

#include "modules/kernel32/NativeLibraries.h"

#include "base/Text.h"
#include "modules/kernel32/DebugOutput.h"

#include <algorithm>
#include <dlfcn.h>
#include <filesystem>
#include <link.h>
#include <mutex>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

namespace simulated
{

namespace
{

constexpr std::string_view kNativePrefix = "lib";
constexpr std::string_view kNativeEnd = ".so";
constexpr std::string_view kDllEnd = ".dll";

// One lock round loading and unloading, as the loader of Windows has it. What a thread did in a library
// before it gave it back comes before the library's end also for the thread sanitizer, which doesn't know the
// native loader's own lock.
std::recursive_mutex& LoaderLock()
{
    static std::recursive_mutex& lock = *new std::recursive_mutex;
    return lock;
}

void* Open(const char* name, int flags) noexcept
{
    const std::lock_guard lock(LoaderLock());
    return dlopen(name, flags);
}

void Close(void* library) noexcept
{
    const std::lock_guard lock(LoaderLock());
    dlclose(library);
}

HMODULE AsModule(const void* base) noexcept
{
    return static_cast<HMODULE>(const_cast<void*>(base));
}

std::optional<Dl_info> InfoOf(const void* address) noexcept
{
    Dl_info info{};
    if (dladdr(address, &info) == 0 || info.dli_fbase == nullptr)
    {
        return std::nullopt;
    }
    return info;
}

// The loader keeps its record for as long as the caller has a reference. It frees it under a lock of its own,
// which the thread sanitizer doesn't know.
[[gnu::noinline, gnu::no_sanitize_thread]] const void* AddressInside(const link_map& library) noexcept
{
    return library.l_ld;
}

HMODULE ModuleOf(void* library) noexcept
{
    const link_map* map = nullptr;
    if (dlinfo(library, RTLD_DI_LINKMAP, &map) != 0)
    {
        return nullptr;
    }
    const std::optional<Dl_info> info = InfoOf(AddressInside(*map));
    return info.has_value() ? AsModule(info->dli_fbase) : nullptr;
}

// A reference of its own to a loaded library, or null.
void* OpenLoaded(HMODULE module) noexcept
{
    const std::optional<Dl_info> info = InfoOf(module);
    return info.has_value() && info->dli_fbase == module ? Open(info->dli_fname, RTLD_LAZY | RTLD_NOLOAD)
                                                         : nullptr;
}

// Where the library that `name` means may lie, in the order to try.
std::vector<std::string> Candidates(const std::string& name)
{
    if (name.find('/') != std::string::npos)
    {
        return {name};
    }
    const std::size_t stem = name.size() - std::min(name.size(), kDllEnd.size());
    std::string file = name;
    if (EqualIgnoringCase(std::string_view(name).substr(stem), kDllEnd))
    {
        file = std::string(kNativePrefix).append(name.substr(0, stem)).append(kNativeEnd);
    }
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    return {(program.parent_path() / file).string(), file};
}

} // namespace

Outcome<HMODULE> libraries::Load(const std::string& name)
{
    const std::lock_guard lock(LoaderLock());
    DWORD error = ERROR_MOD_NOT_FOUND;
    for (const std::string& path : Candidates(name))
    {
        void* const library = Open(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        const HMODULE module = library == nullptr ? nullptr : ModuleOf(library);
        if (module != nullptr)
        {
            return {module, ERROR_SUCCESS};
        }
        std::error_code ignored;
        if (std::filesystem::exists(path, ignored))
        {
            error = ERROR_BAD_EXE_FORMAT;
            const char* const reason = dlerror();
            DebugOutput::Send(reason == nullptr ? path : reason);
        }
    }
    return {nullptr, error};
}

Outcome<HMODULE> libraries::FindLoaded(const std::string& name)
{
    for (const std::string& path : Candidates(name))
    {
        void* const library = Open(path.c_str(), RTLD_LAZY | RTLD_NOLOAD);
        if (library != nullptr)
        {
            const HMODULE module = ModuleOf(library);
            Close(library);
            return {module, ERROR_SUCCESS};
        }
    }
    return {nullptr, ERROR_MOD_NOT_FOUND};
}

HMODULE libraries::AddReference(const void* address) noexcept
{
    const std::optional<Dl_info> info = InfoOf(address);
    const HMODULE module = info.has_value() ? AsModule(info->dli_fbase) : nullptr;
    return OpenLoaded(module) == nullptr ? nullptr : module;
}

bool libraries::Release(HMODULE module) noexcept
{
    // The first reference is the one just taken to reach the library; the second is the caller's. A library
    // that is bound at link time has none of the caller's, which the native loader refuses to give back.
    void* const library = OpenLoaded(module);
    if (library == nullptr)
    {
        return false;
    }
    Close(library);
    Close(library);
    return true;
}

FARPROC libraries::FindFunction(HMODULE module, const char* name) noexcept
{
    void* const library = OpenLoaded(module);
    if (library == nullptr)
    {
        return nullptr;
    }
    void* const address = dlsym(library, name);
    Close(library);
    // The native look-up goes on through the libraries that this one stands on.
    const std::optional<Dl_info> info = InfoOf(address);
    return info.has_value() && info->dli_fbase == module ? reinterpret_cast<FARPROC>(address) : nullptr;
}

} // namespace simulated
