// control/RegistryEditor.cpp
//
// Keys by path, on the functions behind the registry API.

#include "control/RegistryEditor.h"

#include "base/Text.h"
#include "modules/advapi32/RegistryKey.h"

#include <algorithm>
#include <cstring>

namespace simulated
{

namespace
{

struct Root
{
    std::string_view name;
    std::string_view shortName;
    std::uintptr_t handle;
};
const Root kRoots[] = {
    {"HKEY_LOCAL_MACHINE", "HKLM", reinterpret_cast<std::uintptr_t>(HKEY_LOCAL_MACHINE)},
    {"HKEY_CURRENT_USER", "HKCU", reinterpret_cast<std::uintptr_t>(HKEY_CURRENT_USER)},
    {"HKEY_USERS", "HKU", reinterpret_cast<std::uintptr_t>(HKEY_USERS)},
    {"HKEY_CLASSES_ROOT", "HKCR", reinterpret_cast<std::uintptr_t>(HKEY_CLASSES_ROOT)},
};

// Splits the root off a path.
bool FindRoot(std::string_view& path, registry::Base& base)
{
    const std::string_view name = path.substr(0, path.find('\\'));
    for (const Root& root : kRoots)
    {
        if (EqualIgnoringCase(name, root.name) || EqualIgnoringCase(name, root.shortName))
        {
            path.remove_prefix(std::min(path.size(), name.size() + 1));
            return registry::FindBase(reinterpret_cast<HKEY>(root.handle), base) == ERROR_SUCCESS;
        }
    }
    return false;
}

// Opens a key, or makes it first.
std::optional<registry::Base> Find(std::string_view path, bool create)
{
    registry::Base root;
    std::shared_ptr<registry::Key> key;
    bool isNew = false;
    if (!FindRoot(path, root))
    {
        return std::nullopt;
    }
    const DWORD error = create ? registry::Create(root, path, KEY_ALL_ACCESS, key, isNew)
                               : registry::Open(root, path, KEY_ALL_ACCESS, key);
    return error == ERROR_SUCCESS ? std::optional(registry::BaseOf(key)) : std::nullopt;
}

std::vector<std::string> Names(std::string_view key, registry::EntryKind kind)
{
    std::vector<std::string> names;
    if (const std::optional<registry::Base> base = Find(key, false))
    {
        registry::ListNames(*base, kind, names);
    }
    return names;
}

} // namespace

std::optional<registry::Value> RegistryEditor::Read(std::string_view key, std::string_view name)
{
    const std::optional<registry::Base> base = Find(key, false);
    registry::Value value;
    return base && registry::ReadValue(*base, name, value) == ERROR_SUCCESS ? std::optional(value)
                                                                            : std::nullopt;
}

std::optional<std::string> RegistryEditor::ReadText(std::string_view key, std::string_view name)
{
    const std::optional<registry::Value> value = Read(key, name);
    if (!value || (value->type != REG_SZ && value->type != REG_EXPAND_SZ))
    {
        return std::nullopt;
    }
    std::vector<wchar_t> units(value->bytes.size() / sizeof(wchar_t) + 1); // the last one ends the text
    std::memcpy(units.data(), value->bytes.data(), (units.size() - 1) * sizeof(wchar_t));
    return ToUtf8(units.data());
}

std::optional<DWORD> RegistryEditor::ReadNumber(std::string_view key, std::string_view name)
{
    const std::optional<registry::Value> value = Read(key, name);
    DWORD number = 0;
    if (!value || value->bytes.size() != sizeof number)
    {
        return std::nullopt;
    }
    std::memcpy(&number, value->bytes.data(), sizeof number);
    return number;
}

bool RegistryEditor::Write(std::string_view key, std::string_view name, const registry::Value& value)
{
    const std::optional<registry::Base> base = Find(key, true);
    return base && registry::WriteValue(*base, name, value) == ERROR_SUCCESS;
}

bool RegistryEditor::WriteText(std::string_view key, std::string_view name, std::string_view text)
{
    return Write(key, name, registry::TextValue(text, REG_SZ));
}

bool RegistryEditor::WriteNumber(std::string_view key, std::string_view name, DWORD number)
{
    return Write(key, name, registry::NumberValue(number));
}

bool RegistryEditor::HasKey(std::string_view key)
{
    return Find(key, false).has_value();
}

bool RegistryEditor::RemoveKey(std::string_view key)
{
    for (const std::string& name : Keys(key))
    {
        if (!RemoveKey(std::string(key) + '\\' + name))
        {
            return false;
        }
    }
    registry::Base root;
    return FindRoot(key, root) && registry::Delete(root, key) == ERROR_SUCCESS;
}

bool RegistryEditor::RemoveValue(std::string_view key, std::string_view name)
{
    const std::optional<registry::Base> base = Find(key, false);
    return base && registry::DeleteValue(*base, name) == ERROR_SUCCESS;
}

std::vector<std::string> RegistryEditor::Keys(std::string_view key)
{
    return Names(key, registry::EntryKind::Key);
}

std::vector<std::string> RegistryEditor::Values(std::string_view key)
{
    return Names(key, registry::EntryKind::Value);
}

} // namespace simulated
