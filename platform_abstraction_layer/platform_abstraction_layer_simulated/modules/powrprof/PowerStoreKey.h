// modules/powrprof/PowerStoreKey.h
//
// The registry as the power manager uses it: keys by path, values of three kinds, subkeys named by numbers
// or GUIDs. Plain Win32, so that the power manager builds natively and for Windows from the same sources.
#pragma once

#include "PowerStoreText.h"

namespace power_store
{

/// An open key. Every operation returns a Win32 error number.
class Key
{
public:
    Key() noexcept = default;
    ~Key();
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    DWORD Open(HKEY root, const WideText& path, REGSAM access = KEY_READ) noexcept;
    DWORD Create(HKEY root, const WideText& path) noexcept;

    /// ERROR_INVALID_DATA unless the value has exactly `size` bytes.
    DWORD ReadBytes(const wchar_t* name, void* data, DWORD size) const noexcept;
    DWORD ReadNumber(const wchar_t* name, DWORD& number) const noexcept;
    DWORD ReadText(const wchar_t* name, WideText& text) const;

    DWORD WriteBytes(const wchar_t* name, const void* data, DWORD size) const noexcept;
    DWORD WriteNumber(const wchar_t* name, DWORD number) const noexcept;
    DWORD WriteText(const wchar_t* name, const wchar_t* text) const noexcept;

    /// The names of all subkeys.
    DWORD Subkeys(std::vector<WideText>& names) const;

    /// Everything below this key, and its values, appear below `target` too.
    DWORD CopyTo(const Key& target) const;

    /// Removes the subkey `name` with everything below it.
    static DWORD RemoveTree(HKEY root, const WideText& path);

private:
    void Close() noexcept;

    HKEY m_key = nullptr;
};

} // namespace power_store
