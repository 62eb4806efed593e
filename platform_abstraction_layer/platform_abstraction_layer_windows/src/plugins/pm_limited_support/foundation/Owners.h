// foundation/Owners.h
//
// One owner for each kind of thing that Windows hands out and wants back. An owner releases in its
// destructor; it can be moved, not copied.
#pragma once

#include <windows.h>

#include <setupapi.h>

#include <cstddef>
#include <utility>

namespace owners
{

/// Holds one pointer-like value and gives it to `Release` unless it is the empty one.
template <class Pointer, void (*Release)(Pointer) noexcept, LONG_PTR kEmpty = 0>
class Owner
{
public:
    using Value = Pointer;

    Owner() noexcept = default;
    explicit Owner(Value value) noexcept : m_value(value)
    {
    }
    Owner(Owner&& other) noexcept : m_value(other.Detach())
    {
    }
    Owner& operator=(Owner&& other) noexcept
    {
        Reset(other.Detach());
        return *this;
    }
    Owner(const Owner&) = delete;
    Owner& operator=(const Owner&) = delete;
    ~Owner()
    {
        Reset();
    }

    Value Get() const noexcept
    {
        return m_value;
    }
    explicit operator bool() const noexcept
    {
        return m_value != Empty();
    }
    /// Releases what is held and holds `value` from now on. The last error stays that of the call before.
    void Reset(Value value = Empty()) noexcept
    {
        const Value old = std::exchange(m_value, value);
        if (old != Empty())
        {
            ReleaseQuietly(old);
        }
    }
    /// Gives the value away; the caller owns it.
    [[nodiscard]] Value Detach() noexcept
    {
        return std::exchange(m_value, Empty());
    }
    /// Where a function stores the value that it hands out. What was held is released first.
    Value* Put() noexcept
    {
        Reset();
        return &m_value;
    }

private:
    static Value Empty() noexcept
    {
        return reinterpret_cast<Value>(kEmpty);
    }

    static void ReleaseQuietly(Value value) noexcept
    {
        const DWORD error = GetLastError();
        Release(value);
        SetLastError(error);
    }

    Value m_value = Empty();
};

// The system's functions have calling conventions and results of their own; these give them one shape.
inline void CloseObject(HANDLE handle) noexcept
{
    CloseHandle(handle);
}
inline void CloseKey(HKEY key) noexcept
{
    RegCloseKey(key);
}
inline void DestroyList(HDEVINFO list) noexcept
{
    SetupDiDestroyDeviceInfoList(list);
}
inline void FreeLocal(void* block) noexcept
{
    LocalFree(block);
}
inline void FreeBlock(void* block) noexcept
{
    HeapFree(GetProcessHeap(), 0, block);
}
inline void Unmap(void* view) noexcept
{
    UnmapViewOfFile(view);
}
inline void ReleaseModule(HMODULE module) noexcept
{
    FreeLibrary(module);
}

/// What INVALID_HANDLE_VALUE is as a number.
constexpr LONG_PTR kInvalidHandle = -1;

/// Kernel objects whose creators answer null for failure: events, threads, mappings, tokens.
using Handle = Owner<HANDLE, CloseObject>;
/// Files and devices, whose opener answers INVALID_HANDLE_VALUE for failure.
using File = Owner<HANDLE, CloseObject, kInvalidHandle>;
using Key = Owner<HKEY, CloseKey>;
using DeviceList = Owner<HDEVINFO, DestroyList, kInvalidHandle>;
/// Memory that the system allocated for its caller.
using LocalBlock = Owner<void*, FreeLocal>;
/// Memory from the process heap.
using HeapBlock = Owner<void*, FreeBlock>;
using View = Owner<void*, Unmap>;
/// One reference to a loaded module.
using Module = Owner<HMODULE, ReleaseModule>;

/// `size` bytes of zeros from the process heap; the owner is empty when there is no memory.
[[nodiscard]] inline HeapBlock AllocateBlock(std::size_t size) noexcept
{
    return HeapBlock(HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, size));
}

/// Enters a critical section for the length of a scope.
class SectionLock
{
public:
    explicit SectionLock(CRITICAL_SECTION& section) noexcept : m_section(section)
    {
        EnterCriticalSection(&m_section);
    }
    ~SectionLock()
    {
        LeaveCriticalSection(&m_section);
    }
    SectionLock(const SectionLock&) = delete;
    SectionLock& operator=(const SectionLock&) = delete;

private:
    CRITICAL_SECTION& m_section;
};

} // namespace owners
