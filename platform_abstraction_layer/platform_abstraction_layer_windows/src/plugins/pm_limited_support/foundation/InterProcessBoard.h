// foundation/InterProcessBoard.h
//
// A board: a small shared memory area with a doorbell and a lock, reachable by name from any session.
// Results are 0 and 0x80004005 unless stated otherwise; failures are reported to the debugger alone.
#pragma once

#include "foundation/Api.h"

#include <windows.h>

/// The record at offset 0 of a board, 12 bytes, little-endian.
struct IpbDataHeader
{
    DWORD code;  ///< offset 0: request code; on the result board 1 for success
    DWORD value; ///< offset 4: request value or result value
    DWORD size;  ///< offset 8: bytes of text at offset 12, terminator included
};
static_assert(sizeof(IpbDataHeader) == 12);

class ORVL_API CInterProcessBoard
{
public:
    CInterProcessBoard() noexcept;
    virtual ~CInterProcessBoard();
    CInterProcessBoard(const CInterProcessBoard&) noexcept;
    CInterProcessBoard& operator=(const CInterProcessBoard&) noexcept;

    /// Closes what is open, then creates the board with `size` bytes (`create` nonzero) or opens it.
    [[nodiscard]] LONG Reset(const wchar_t* name, LONG size, int create, ULONG instance) noexcept;

    /// Copies `size` bytes to the board at `offset`; a null `data` writes zeros. Fails at once when the lock
    /// is held, and when the range is negative or ends behind the board's last page of memory.
    [[nodiscard]] LONG Paste(LONG offset, void* data, LONG size) noexcept;

    /// Copies `size` bytes from the board at `offset`, under the rules of `Paste`.
    [[nodiscard]] LONG Read(LONG offset, void* data, LONG size) noexcept;

    /// Writes `size` zeros at `offset`.
    [[nodiscard]] LONG Clear(LONG offset, LONG size) noexcept;

    /// Takes the lock, waiting up to `timeout` milliseconds.
    [[nodiscard]] LONG Lock(LONG timeout) noexcept;

    /// Gives the lock back.
    LONG UnLock() noexcept;

    /// 1 when the lock is held, by whomever, this object included, and for a closed board; else 0. Doesn't
    /// wait for the holder.
    int IsLocked() noexcept;

    /// 1 when the event is signalled within `timeout` milliseconds, else 0.
    [[nodiscard]] int IsDataAvailble(ULONG timeout) noexcept;

    /// Resets the event (`reset` nonzero) or sets it; the system call's result.
    [[nodiscard]] int Flag(int reset) noexcept;

    /// "Global\", kind, name and instance in `buffer` of `size` characters. 1, or 0 with `buffer` left alone
    /// for a null pointer or a name that doesn't fit.
    [[nodiscard]] int ConstructName(const wchar_t* kind, const wchar_t* name, wchar_t* buffer, int size,
                                    ULONG instance) noexcept;

protected:
    /// Closes the event, the mapping and the lock. Always 0.
    LONG CloseObjects() noexcept;

    HANDLE m_hEvent = nullptr;
    HANDLE m_hSemaphore = nullptr;
    HANDLE m_hMap = nullptr;
};
