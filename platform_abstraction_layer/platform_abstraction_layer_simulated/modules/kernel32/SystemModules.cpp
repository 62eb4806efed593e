// modules/kernel32/SystemModules.cpp
//
// The table of system modules, and their entries in machine.ini.
//
// Known differences from Windows: these modules are always loaded and have no count.

#include "modules/kernel32/SystemModules.h"

#include "base/Text.h"
#include "machine/Machine.h"
#include "modules/kernel32/Modules.h"
#include "modules/kernel32/SystemVersion.h"

#include <algorithm>
#include <list>
#include <mutex>

namespace simulated
{

namespace
{

constexpr std::string_view kSystemFolder = "C:\\WINDOWS\\system32\\";
constexpr const char* kModulesSection = "Modules";
constexpr std::string_view kAbsent = "absent";

struct SystemModule
{
    std::string name;
    std::string path;
    std::span<const modules::Export> exports;
    DWORD sinceMajor;
    bool isAdded; ///< by machine.ini, and there only while it says so
};

// Records are never moved or freed: their addresses are module handles.
struct SystemModules
{
    std::mutex mutex;
    std::list<SystemModule> modules;
};

SystemModules& TheSystemModules()
{
    static SystemModules& modules = *new SystemModules;
    return modules;
}

// The file name of `name`, with ".dll" when it has no extension; another folder's file keeps its folder.
std::string FileNameOf(std::string_view name)
{
    if (EqualIgnoringCase(name.substr(0, kSystemFolder.size()), kSystemFolder))
    {
        name.remove_prefix(kSystemFolder.size());
    }
    return std::string(name) + (name.find('.') == std::string_view::npos ? ".dll" : "");
}

template <class Condition>
SystemModule* FindRecord(Condition condition)
{
    SystemModules& table = TheSystemModules();
    const std::lock_guard lock(table.mutex);
    const auto found = std::find_if(table.modules.begin(), table.modules.end(), condition);
    return found == table.modules.end() ? nullptr : &*found;
}

SystemModule* FindNamed(std::string_view name)
{
    return FindRecord([&](const SystemModule& module) { return EqualIgnoringCase(module.name, name); });
}

SystemModule* FindHandle(HMODULE handle)
{
    return FindRecord([&](const SystemModule& module)
                      { return static_cast<const void*>(&module) == static_cast<const void*>(handle); });
}

SystemModule* Add(SystemModule module)
{
    SystemModules& table = TheSystemModules();
    const std::lock_guard lock(table.mutex);
    return &table.modules.emplace_back(std::move(module));
}

bool Matches(const modules::Export& entry, const char* nameOrOrdinal) noexcept
{
    const auto number = reinterpret_cast<std::uintptr_t>(nameOrOrdinal);
    return number <= 0xFFFF ? entry.ordinal != 0 && entry.ordinal == number
                            : entry.name != nullptr && std::string_view(entry.name) == nameOrOrdinal;
}

bool IsTakenAway(const std::string& key)
{
    return EqualIgnoringCase(Machine::Read(kModulesSection, key, ""), kAbsent);
}

} // namespace

void modules::Register(const char* name, std::span<const Export> exports, DWORD sinceMajor)
{
    Add({name, std::string(kSystemFolder) + name, exports, sinceMajor, false});
}

std::optional<HMODULE> system_modules::Find(const std::string& name)
{
    const std::string file = FileNameOf(name);
    const std::string choice = Machine::Read(kModulesSection, file, "");
    SystemModule* module = FindNamed(file);
    if (module == nullptr && !choice.empty())
    {
        module = Add({file, choice, {}, 0, true});
    }
    if (module == nullptr || (module->isAdded && choice.empty()))
    {
        return std::nullopt;
    }
    const bool isThere =
        !EqualIgnoringCase(choice, kAbsent) && ReadSystemVersion().major >= module->sinceMajor;
    return isThere ? reinterpret_cast<HMODULE>(module) : nullptr;
}

bool system_modules::IsModule(HMODULE module)
{
    return FindHandle(module) != nullptr;
}

FARPROC system_modules::FindFunction(HMODULE handle, const char* nameOrOrdinal)
{
    const SystemModule* module = FindHandle(handle);
    if (module == nullptr)
    {
        return nullptr;
    }
    const auto entry = std::find_if(module->exports.begin(), module->exports.end(),
                                    [&](const modules::Export& row) { return Matches(row, nameOrOrdinal); });
    if (entry == module->exports.end() || ReadSystemVersion().major < entry->sinceMajor)
    {
        return nullptr;
    }
    const std::string name = entry->name == nullptr ? std::to_string(entry->ordinal) : entry->name;
    return IsTakenAway(module->name + '.' + name) ? nullptr : entry->address;
}

std::string system_modules::WindowsPath(HMODULE handle)
{
    const SystemModule* module = FindHandle(handle);
    return module == nullptr ? std::string() : module->path;
}

} // namespace simulated
