// modules/powrprof/PowerStoreKey.cpp
//
// Keys and values by the registry functions.

#include "PowerStoreKey.h"

namespace power_store
{

namespace
{

// Longer names of keys and values can't exist.
constexpr DWORD kLongestName = 256;
constexpr DWORD kLongestValueName = 16384;

} // namespace

Key::~Key()
{
    Close();
}

void Key::Close() noexcept
{
    if (m_key != nullptr)
    {
        RegCloseKey(m_key);
        m_key = nullptr;
    }
}

DWORD Key::Open(HKEY root, const WideText& path, REGSAM access) noexcept
{
    Close();
    return static_cast<DWORD>(RegOpenKeyExW(root, path.data(), 0, access, &m_key));
}

DWORD Key::Create(HKEY root, const WideText& path) noexcept
{
    Close();
    return static_cast<DWORD>(RegCreateKeyExW(root, path.data(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                              KEY_ALL_ACCESS, nullptr, &m_key, nullptr));
}

DWORD Key::ReadBytes(const wchar_t* name, void* data, DWORD size) const noexcept
{
    DWORD found = size;
    const auto error = static_cast<DWORD>(
        RegQueryValueExW(m_key, name, nullptr, nullptr, static_cast<LPBYTE>(data), &found));
    if (error != ERROR_SUCCESS)
    {
        return error == ERROR_MORE_DATA ? ERROR_INVALID_DATA : error;
    }
    return found == size ? ERROR_SUCCESS : ERROR_INVALID_DATA;
}

DWORD Key::ReadNumber(const wchar_t* name, DWORD& number) const noexcept
{
    return ReadBytes(name, &number, sizeof number);
}

DWORD Key::ReadText(const wchar_t* name, WideText& text) const
{
    // The value can grow between the two calls.
    DWORD error = ERROR_MORE_DATA;
    for (int attempt = 0; error == ERROR_MORE_DATA && attempt < 8; ++attempt)
    {
        DWORD size = 0;
        error = static_cast<DWORD>(RegQueryValueExW(m_key, name, nullptr, nullptr, nullptr, &size));
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
        text.assign(size / sizeof(wchar_t) + 2, 0);
        error = static_cast<DWORD>(
            RegQueryValueExW(m_key, name, nullptr, nullptr, reinterpret_cast<LPBYTE>(text.data()), &size));
    }
    text.resize(Length(text.data()));
    text.push_back(0);
    return error;
}

DWORD Key::WriteBytes(const wchar_t* name, const void* data, DWORD size) const noexcept
{
    return static_cast<DWORD>(
        RegSetValueExW(m_key, name, 0, REG_BINARY, static_cast<const BYTE*>(data), size));
}

DWORD Key::WriteNumber(const wchar_t* name, DWORD number) const noexcept
{
    return static_cast<DWORD>(
        RegSetValueExW(m_key, name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&number), sizeof number));
}

DWORD Key::WriteText(const wchar_t* name, const wchar_t* text) const noexcept
{
    const auto size = static_cast<DWORD>((Length(text) + 1) * sizeof(wchar_t));
    return static_cast<DWORD>(
        RegSetValueExW(m_key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size));
}

DWORD Key::Subkeys(std::vector<WideText>& names) const
{
    names.clear();
    for (DWORD index = 0;; ++index)
    {
        WideText name(kLongestName, 0);
        DWORD length = kLongestName;
        const auto error = static_cast<DWORD>(
            RegEnumKeyExW(m_key, index, name.data(), &length, nullptr, nullptr, nullptr, nullptr));
        if (error == ERROR_NO_MORE_ITEMS)
        {
            return ERROR_SUCCESS;
        }
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
        name.resize(Length(name.data()) + 1);
        names.push_back(name);
    }
}

DWORD Key::CopyTo(const Key& target) const
{
    for (DWORD index = 0;; ++index)
    {
        WideText name(kLongestValueName, 0);
        DWORD length = kLongestValueName;
        DWORD size = 0;
        DWORD type = 0;
        auto error = static_cast<DWORD>(
            RegEnumValueW(m_key, index, name.data(), &length, nullptr, &type, nullptr, &size));
        if (error == ERROR_NO_MORE_ITEMS)
        {
            break;
        }
        std::vector<BYTE> data(size + 1);
        if (error == ERROR_SUCCESS)
        {
            error =
                static_cast<DWORD>(RegQueryValueExW(m_key, name.data(), nullptr, &type, data.data(), &size));
        }
        if (error == ERROR_SUCCESS)
        {
            error = static_cast<DWORD>(RegSetValueExW(target.m_key, name.data(), 0, type, data.data(), size));
        }
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
    }

    std::vector<WideText> names;
    if (const DWORD error = Subkeys(names); error != ERROR_SUCCESS)
    {
        return error;
    }
    for (const WideText& name : names)
    {
        Key from;
        Key to;
        DWORD error = from.Open(m_key, name);
        error = error == ERROR_SUCCESS ? to.Create(target.m_key, name) : error;
        error = error == ERROR_SUCCESS ? from.CopyTo(to) : error;
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    return ERROR_SUCCESS;
}

DWORD Key::RemoveTree(HKEY root, const WideText& path)
{
    std::vector<WideText> names;
    {
        Key key;
        DWORD error = key.Open(root, path);
        error = error == ERROR_SUCCESS ? key.Subkeys(names) : error;
        if (error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    for (const WideText& name : names)
    {
        if (const DWORD error = RemoveTree(root, Join(path, name.data())); error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    return static_cast<DWORD>(RegDeleteKeyW(root, path.data()));
}

} // namespace power_store
