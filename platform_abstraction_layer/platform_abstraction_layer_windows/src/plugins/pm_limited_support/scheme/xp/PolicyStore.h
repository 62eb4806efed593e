// scheme/xp/PolicyStore.h
//
// The operating system's own store of schemes in the registry, read directly: the power functions see the
// schemes of this process's account alone, the store shows those of every account.
#pragma once

#include <windows.h>

namespace policy_store
{

/// The machine's part of the store.
constexpr const wchar_t* kMachineKey =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";

/// True when this process's account has a scheme of that number.
bool HasScheme(int index) noexcept;

/// The highest number of a scheme in the machine's part, 0 for none.
int HighestScheme() noexcept;

// See `CSchemeEx::ReadUserActivePowerScheme` and its two siblings.

int ReadUserActiveScheme(const wchar_t* subKey) noexcept;
[[nodiscard]] int ReadUserPolicy(int index, const wchar_t* subKey, unsigned char* data, ULONG* size) noexcept;
[[nodiscard]] int ReadMachinePolicy(int index, unsigned char* data, ULONG* size) noexcept;

} // namespace policy_store
