// foundation/Results.h
//
// The result codes that the classes share. An operation declared LONG gives 0, 1 where it had nothing to
// do, or one of the negative codes; what the host sees are the four codes of plugin/HostRecords.h.
#pragma once

#include <windows.h>

constexpr LONG kSucceeded = 0;
constexpr LONG kAlreadySetUp = 1;
constexpr LONG kGeneralFailure = static_cast<LONG>(0x80004005u);
constexpr LONG kNotSupported = static_cast<LONG>(0x80004001u);
constexpr LONG kBadArgument = static_cast<LONG>(0x80070057u);
constexpr LONG kNotSetUp = static_cast<LONG>(0x80070006u);
constexpr LONG kAccessRefused = static_cast<LONG>(0x80070005u);

/// Folds a Win32 error number into a result code; a number that isn't positive comes back unchanged.
constexpr LONG ResultFromWin32(DWORD error) noexcept
{
    const auto number = static_cast<LONG>(error);
    return number > 0 ? static_cast<LONG>((error & 0xFFFFu) | 0x80070000u) : number;
}
