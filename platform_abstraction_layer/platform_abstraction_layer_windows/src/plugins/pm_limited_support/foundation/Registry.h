// foundation/Registry.h
//
// Texts and records in the registry. Neither type, terminator, a whole number of characters nor a record's
// size can be relied on there.
#pragma once

#include <windows.h>

#include <cstddef>

namespace registry
{

/// Reads the value `name` of `key` into `target`, which has room for `bytes` bytes; on return `bytes` is the
/// value's own size. The text in `target` is always terminated; a value that fills the whole buffer loses its
/// last character to the terminator. The system's code: ERROR_MORE_DATA when the room is too small, and
/// `target` is then empty, as after every failure. The value may be of any type; who asks gets it in `type`.
[[nodiscard]] LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t* target, DWORD& bytes,
                               DWORD* type = nullptr) noexcept;

/// The same into an array, for callers who don't want the size.
template <std::size_t N>
[[nodiscard]] LSTATUS ReadText(HKEY key, const wchar_t* name, wchar_t (&target)[N],
                               DWORD* type = nullptr) noexcept
{
    auto bytes = static_cast<DWORD>(sizeof target);
    return ReadText(key, name, target, bytes, type);
}

/// Reads the binary value `name` of `key`, a record of `recordSize` bytes, into `target`, which has room for
/// `*bytes` bytes; on return `*bytes` is the value's own size. The system's code, or ERROR_INVALID_DATA for a
/// value of another type or with fewer bytes than the record, whose bytes are then in `target` all the same.
/// Without a size (`bytes` null) nothing is a record.
[[nodiscard]] LSTATUS ReadRecord(HKEY key, const wchar_t* name, unsigned char* target, DWORD* bytes,
                                 DWORD recordSize) noexcept;

/// The number that a log line gives of a failed `ReadRecord`: the last error, but ERROR_INVALID_DATA where
/// the system's own query succeeded.
DWORD ErrorOfRecord(LSTATUS failed) noexcept;

} // namespace registry
