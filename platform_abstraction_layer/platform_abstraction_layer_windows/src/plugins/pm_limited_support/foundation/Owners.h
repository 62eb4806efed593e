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

/// Holds one value of `Traits::Value` and gives it to `Traits::Release` unless it is `Traits::Empty()`.
template <class Traits>
class Owner
{
public:
    using Value = typename Traits::Value;

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
        return m_value != Traits::Empty();
    }
    /// Releases what is held and holds `value` from now on.
    void Reset(Value value = Traits::Empty()) noexcept
    {
        const Value old = std::exchange(m_value, value);
        if (old != Traits::Empty())
        {
            Traits::Release(old);
        }
    }
    /// Gives the value away; the caller owns it.
    Value Detach() noexcept
    {
        return std::exchange(m_value, Traits::Empty());
    }
    /// Where a function stores the value that it hands out. What was held is released first.
    Value* Receive() noexcept
    {
        Reset();
        return &m_value;
    }

private:
    Value m_value = Traits::Empty();
};

/// Kernel objects whose creators answer null for failure: events, threads, mappings, tokens.
struct HandleTraits
{
    using Value = HANDLE;
    static Value Empty() noexcept
    {
        return nullptr;
    }
    static void Release(Value handle) noexcept
    {
        CloseHandle(handle);
    }
};

/// Files and devices, whose opener answers INVALID_HANDLE_VALUE for failure.
struct FileTraits
{
    using Value = HANDLE;
    static Value Empty() noexcept
    {
        return INVALID_HANDLE_VALUE;
    }
    static void Release(Value handle) noexcept
    {
        CloseHandle(handle);
    }
};

struct KeyTraits
{
    using Value = HKEY;
    static Value Empty() noexcept
    {
        return nullptr;
    }
    static void Release(Value key) noexcept
    {
        RegCloseKey(key);
    }
};

struct DeviceListTraits
{
    using Value = HDEVINFO;
    static Value Empty() noexcept
    {
        return INVALID_HANDLE_VALUE;
    }
    static void Release(Value list) noexcept
    {
        SetupDiDestroyDeviceInfoList(list);
    }
};

struct LocalTraits
{
    using Value = void*;
    static Value Empty() noexcept
    {
        return nullptr;
    }
    static void Release(Value block) noexcept
    {
        LocalFree(block);
    }
};

struct HeapTraits
{
    using Value = void*;
    static Value Empty() noexcept
    {
        return nullptr;
    }
    static void Release(Value block) noexcept
    {
        HeapFree(GetProcessHeap(), 0, block);
    }
};

struct ViewTraits
{
    using Value = void*;
    static Value Empty() noexcept
    {
        return nullptr;
    }
    static void Release(Value view) noexcept
    {
        UnmapViewOfFile(view);
    }
};

using Handle = Owner<HandleTraits>;
using File = Owner<FileTraits>;
using Key = Owner<KeyTraits>;
using DeviceList = Owner<DeviceListTraits>;
using LocalBlock = Owner<LocalTraits>;
using HeapBlock = Owner<HeapTraits>;
using View = Owner<ViewTraits>;

/// `size` bytes of zeros from the process heap; the owner is empty when there is no memory.
inline HeapBlock AllocateBlock(std::size_t size) noexcept
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
