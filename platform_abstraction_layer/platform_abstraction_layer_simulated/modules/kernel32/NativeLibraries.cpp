// modules/kernel32/NativeLibraries.cpp
//
// Modules that are native libraries, through the native loader. The loader's own counts are the only ones.
//
// Known differences from Windows: a native library exports nothing by number.

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

constexpr std::string_view kFolder = "C:\\Program Files\\Kelvo\\ORVL\\";
constexpr std::string_view kNativePrefix = "lib";
constexpr std::string_view kNativeEnd = ".so";
constexpr std::string_view kDllEnd = ".dll";
constexpr std::string_view kProgramEnd = ".exe";

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
    if (!info.has_value() || info->dli_fbase != module)
    {
        return nullptr;
    }
    const char* const name = module == libraries::Executable() ? nullptr : info->dli_fname;
    return Open(name, RTLD_LAZY | RTLD_NOLOAD);
}

bool EndsIgnoringCase(std::string_view text, std::string_view end)
{
    return text.size() >= end.size() && EqualIgnoringCase(text.substr(text.size() - end.size()), end);
}

std::string_view WithoutEnd(std::string_view text, std::string_view end)
{
    return EndsIgnoringCase(text, end) ? text.substr(0, text.size() - end.size()) : text;
}

std::string FolderOfExecutable()
{
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string() + '/';
}

// Where the library that `name` means may lie, in the order to try.
std::vector<std::string> Candidates(std::string name)
{
    if (name.find('/') != std::string::npos && name.ends_with(kNativeEnd))
    {
        return {name};
    }
    if (name.size() > kFolder.size() && EqualIgnoringCase(name.substr(0, kFolder.size()), kFolder))
    {
        name.erase(0, kFolder.size());
    }
    std::replace(name.begin(), name.end(), '\\', '/');
    const std::size_t folderLength = name.rfind('/') + 1; // 0 when there is none
    const std::string folder = name.substr(0, folderLength);
    std::string file = name.substr(folderLength);
    if (!file.ends_with(kNativeEnd))
    {
        file = std::string(kNativePrefix).append(WithoutEnd(file, kDllEnd)).append(kNativeEnd);
    }
    if (!folder.empty())
    {
        return {folder + file};
    }
    return {FolderOfExecutable() + file, file};
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
    const HMODULE executable = Executable();
    const std::string path = WindowsPath(executable);
    const bool isExecutable =
        EqualIgnoringCase(name, path) || EqualIgnoringCase(name, path.substr(kFolder.size()));
    return isExecutable ? Outcome<HMODULE>{executable, ERROR_SUCCESS}
                        : Outcome<HMODULE>{nullptr, ERROR_MOD_NOT_FOUND};
}

HMODULE libraries::FindByAddress(const void* address) noexcept
{
    const std::optional<Dl_info> info = InfoOf(address);
    return info.has_value() ? AsModule(info->dli_fbase) : nullptr;
}

HMODULE libraries::Executable() noexcept
{
    static const HMODULE executable = []
    {
        void* const program = Open(nullptr, RTLD_LAZY);
        const HMODULE module = ModuleOf(program);
        Close(program);
        return module;
    }();
    return executable;
}

bool libraries::IsLibrary(HMODULE module) noexcept
{
    return module != nullptr && FindByAddress(module) == module;
}

bool libraries::AddReference(HMODULE module) noexcept
{
    return OpenLoaded(module) != nullptr;
}

void libraries::Release(HMODULE module) noexcept
{
    // The first reference is the one just taken to reach the library; the second is the caller's. A library
    // that is bound at link time has none of the caller's, which the native loader refuses to give back.
    void* const library = OpenLoaded(module);
    if (library != nullptr)
    {
        Close(library);
        Close(library);
    }
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
    return address != nullptr && FindByAddress(address) == module ? reinterpret_cast<FARPROC>(address)
                                                                  : nullptr;
}

std::string libraries::WindowsPath(HMODULE module)
{
    if (module == Executable())
    {
        std::error_code error;
        const auto program = std::filesystem::read_symlink("/proc/self/exe", error).filename().string();
        return std::string(kFolder).append(program).append(kProgramEnd);
    }
    const std::optional<Dl_info> info = InfoOf(module);
    const std::string file =
        std::filesystem::path(info.has_value() ? info->dli_fname : "").filename().string();
    std::string_view stem = WithoutEnd(file, kNativeEnd);
    if (stem.starts_with(kNativePrefix))
    {
        stem.remove_prefix(kNativePrefix.size());
    }
    return std::string(kFolder).append(stem).append(kDllEnd);
}

} // namespace simulated
