// modules/powrprof/PowerStoreSeeding.cpp
//
// The defaults by way of the registry functions.

#include "PowerStoreSeeding.h"

#include "PowerStoreDefaults.h"
#include "PowerStoreKey.h"
#include "PowerStoreSchemes.h"
#include "PowerStoreSettings.h"

namespace power_store
{

namespace
{

// Writes below one root and remembers the first error.
class RegistryWriter : public ValueWriter
{
public:
    explicit RegistryWriter(HKEY root) noexcept : m_root(root)
    {
    }

    bool Put(const wchar_t* path, const wchar_t* name, ValueKind kind, const void* data, DWORD size) override
    {
        Key key;
        m_error = key.Create(m_root, ToText(path));
        if (m_error == ERROR_SUCCESS)
        {
            m_error = Write(key, name, kind, data, size);
        }
        return m_error == ERROR_SUCCESS;
    }

    DWORD Error() const noexcept
    {
        return m_error;
    }

private:
    static DWORD Write(const Key& key, const wchar_t* name, ValueKind kind, const void* data, DWORD size)
    {
        switch (kind)
        {
        case ValueKind::Text:
            return key.WriteText(name, static_cast<const wchar_t*>(data));
        case ValueKind::Number:
            return key.WriteNumber(name, *static_cast<const DWORD*>(data));
        case ValueKind::Bytes:
            break;
        }
        return key.WriteBytes(name, data, size);
    }

    HKEY m_root;
    DWORD m_error = ERROR_SUCCESS;
};

} // namespace

DWORD SeedMachine(DWORD majorVersion)
{
    RegistryWriter writer(HKEY_LOCAL_MACHINE);
    WriteMachineDefaults(writer, majorVersion);
    return writer.Error();
}

DWORD SeedCurrentUser()
{
    RegistryWriter writer(HKEY_CURRENT_USER);
    WriteUserDefaults(writer);
    return writer.Error();
}

DWORD RemoveStore()
{
    struct Part
    {
        HKEY root;
        const wchar_t* path;
    };
    const Part parts[] = {{HKEY_CURRENT_USER, kUserPowerKey},
                          {HKEY_LOCAL_MACHINE, kMachinePowerKey},
                          {HKEY_LOCAL_MACHINE, kSettingSchemesKey},
                          {HKEY_LOCAL_MACHINE, kKnownSettingsKey},
                          {HKEY_LOCAL_MACHINE, kMachineAnswersKey}};
    for (const Part& part : parts)
    {
        const DWORD error = Key::RemoveTree(part.root, ToText(part.path));
        if (error != ERROR_SUCCESS && error != ERROR_FILE_NOT_FOUND)
        {
            return error;
        }
    }
    return ERROR_SUCCESS;
}

} // namespace power_store
