// modules/advapi32/Registry.cpp
//
// The registry functions on keys.

#include "base/Text.h"
#include "modules/advapi32/RegistryHives.h"
#include "modules/advapi32/RegistryKey.h"
#include "modules/advapi32/RegistryShell.h"

namespace simulated::registry
{

namespace
{

bool IsEmpty(LPCWSTR text)
{
    return text == nullptr || *text == 0;
}

HKEY NewHandle(const std::shared_ptr<Key>& key, const PlatformCall& call)
{
    return static_cast<HKEY>(HandleTable::Insert(key, call));
}

DWORD OpenKey(HKEY key, LPCWSTR subKey, REGSAM access, PHKEY result, const PlatformCall& call)
{
    if (result == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    if (PredefinedName(key) != nullptr && IsEmpty(subKey))
    {
        *result = key;
        return ERROR_SUCCESS;
    }
    *result = nullptr;
    Base base;
    std::shared_ptr<Key> opened;
    DWORD error = FindBase(key, base);
    error = error == ERROR_SUCCESS ? Open(base, ToUtf8(subKey), access, opened) : error;
    if (error == ERROR_SUCCESS)
    {
        *result = NewHandle(opened, call);
    }
    return error;
}

DWORD OpenKeySimply(HKEY key, LPCWSTR subKey, PHKEY result, const PlatformCall& call)
{
    if (result != nullptr && IsEmpty(subKey))
    {
        *result = key;
        return ERROR_SUCCESS;
    }
    return OpenKey(key, subKey, MAXIMUM_ALLOWED, result, call);
}

DWORD CreateKey(HKEY key, LPCWSTR subKey, REGSAM access, PHKEY result, LPDWORD disposition,
                const PlatformCall& call)
{
    if (result == nullptr || subKey == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    *result = nullptr;
    Base base;
    std::shared_ptr<Key> opened;
    bool isNew = false;
    DWORD error = FindBase(key, base);
    error = error == ERROR_SUCCESS ? Create(base, ToUtf8(subKey), access, opened, isNew) : error;
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    *result = NewHandle(opened, call);
    if (disposition != nullptr)
    {
        *disposition = isNew ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
    }
    return ERROR_SUCCESS;
}

DWORD CloseKey(HKEY key)
{
    if (PredefinedName(key) != nullptr)
    {
        return ERROR_SUCCESS;
    }
    return HandleTable::Find<Key>(key) == nullptr ? ERROR_INVALID_HANDLE : HandleTable::Close(key);
}

DWORD DeleteKey(HKEY key, LPCWSTR subKey)
{
    Base base;
    if (const DWORD error = FindBase(key, base); error != ERROR_SUCCESS)
    {
        return error;
    }
    return subKey == nullptr ? ERROR_INVALID_PARAMETER : Delete(base, ToUtf8(subKey));
}

DWORD EnumerateKey(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize)
{
    if (name == nullptr || nameSize == nullptr)
    {
        return ERROR_INVALID_PARAMETER;
    }
    Base base;
    std::vector<std::string> names;
    if (const DWORD error = ListFor(key, KEY_ENUMERATE_SUB_KEYS, EntryKind::Key, base, names);
        error != ERROR_SUCCESS)
    {
        return error;
    }
    if (index >= names.size())
    {
        return ERROR_NO_MORE_ITEMS;
    }
    return CopyName(names[index], name, *nameSize);
}

} // namespace

} // namespace simulated::registry

using namespace simulated;

SIM_API LSTATUS WINAPI RegOpenKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, REGSAM access, PHKEY result)
{
    PlatformCall call(CallClass::Registry, "RegOpenKeyExW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey, access);
    return call.Status(
        [&]() -> DWORD {
            return reserved != 0 ? ERROR_INVALID_PARAMETER
                                 : registry::OpenKey(key, subKey, access, result, call);
        });
}

SIM_API LSTATUS WINAPI RegOpenKeyW(HKEY key, LPCWSTR subKey, PHKEY result)
{
    PlatformCall call(CallClass::Registry, "RegOpenKeyW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey);
    return call.Status([&] { return registry::OpenKeySimply(key, subKey, result, call); });
}

SIM_API LSTATUS WINAPI RegCreateKeyExW(HKEY key, LPCWSTR subKey, DWORD reserved, LPWSTR, DWORD, REGSAM access,
                                       SECURITY_ATTRIBUTES*, PHKEY result, LPDWORD disposition)
{
    PlatformCall call(CallClass::Registry, "RegCreateKeyExW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey, access);
    return call.Status(
        [&]() -> DWORD
        {
            return reserved != 0 ? ERROR_INVALID_PARAMETER
                                 : registry::CreateKey(key, subKey, access, result, disposition, call);
        });
}

SIM_API LSTATUS WINAPI RegCloseKey(HKEY key)
{
    PlatformCall call(CallClass::Registry, "RegCloseKey", SIM_CALLER);
    registry::NoteArguments(call, key);
    return call.ReleaseStatus([&] { return registry::CloseKey(key); });
}

SIM_API LSTATUS WINAPI RegDeleteKeyW(HKEY key, LPCWSTR subKey)
{
    PlatformCall call(CallClass::Registry, "RegDeleteKeyW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey);
    return call.Status([&] { return registry::DeleteKey(key, subKey); });
}

SIM_API LSTATUS WINAPI RegEnumKeyExW(HKEY key, DWORD index, LPWSTR name, LPDWORD nameSize, LPDWORD reserved,
                                     LPWSTR keyClass, LPDWORD classSize, PFILETIME lastWrite)
{
    PlatformCall call(CallClass::Registry, "RegEnumKeyExW", SIM_CALLER);
    registry::NoteArguments(call, key, index);
    return call.Status(
        [&]() -> DWORD
        {
            // The class of a key and the time of its last write aren't kept.
            const bool isSimple = keyClass == nullptr && classSize == nullptr && lastWrite == nullptr;
            return reserved == nullptr && isSimple ? registry::EnumerateKey(key, index, name, nameSize)
                                                   : ERROR_INVALID_PARAMETER;
        });
}

SIM_API LSTATUS WINAPI RegEnumKeyW(HKEY key, DWORD index, LPWSTR name, DWORD nameSize)
{
    PlatformCall call(CallClass::Registry, "RegEnumKeyW", SIM_CALLER);
    registry::NoteArguments(call, key, index);
    return call.Status(
        [&]
        {
            DWORD size = nameSize;
            return registry::EnumerateKey(key, index, name, &size);
        });
}

SIM_API LSTATUS WINAPI RegLoadKeyW(HKEY key, LPCWSTR subKey, LPCWSTR file)
{
    PlatformCall call(CallClass::Registry, "RegLoadKeyW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey, file);
    return call.Status([&] { return registry::LoadHive(key, subKey, file); });
}

SIM_API LSTATUS WINAPI RegUnLoadKeyW(HKEY key, LPCWSTR subKey)
{
    PlatformCall call(CallClass::Registry, "RegUnLoadKeyW", SIM_CALLER);
    registry::NoteArguments(call, key, subKey);
    return call.ReleaseStatus([&] { return registry::UnloadHive(key, subKey); });
}
