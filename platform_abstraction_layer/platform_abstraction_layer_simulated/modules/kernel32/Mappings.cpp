// modules/kernel32/Mappings.cpp
//
// File mappings that are backed by the page file, and views of them. A view is bounded by the mapping's size
// rounded up to whole pages, and stays good when the handle is closed.
//
// Known differences from Windows: mappings of files and copy-on-write views are refused; views begin at
// pages, not at multiples of 64 KB.

#include "base/Trace.h"
#include "modules/kernel32/KernelState.h"
#include "modules/kernel32/ObjectNames.h"

#include <windows.h>

#include <map>
#include <mutex>

namespace simulated
{

namespace
{

// Offsets of views are multiples of this.
constexpr std::uint64_t kGranularity = 0x10000;
// What a machine of that time could have promised at most.
constexpr std::uint64_t kLargestMapping = 0x40000000;
constexpr const char* kLeakKind = "view";

class Mapping final : public Object
{
public:
    Mapping(std::shared_ptr<KernelState> state, DWORD access)
        : Object(ObjectKind::Mapping), m_state(std::move(state)),
          m_access(GrantedAccess(access, SECTION_ALL_ACCESS))
    {
    }

    const KernelState& State() const noexcept
    {
        return *m_state;
    }

    // True when the handle's rights and the mapping's protection allow a view with `access`.
    bool Allows(DWORD access) const noexcept
    {
        const bool writes = (access & SECTION_MAP_WRITE) != 0;
        const DWORD needed = writes ? SECTION_MAP_WRITE : SECTION_MAP_READ;
        return (m_access & needed) == needed && (!writes || m_state->Constant() == PAGE_READWRITE);
    }

private:
    std::shared_ptr<KernelState> m_state;
    DWORD m_access;
};

// The views of this process by their address.
struct Views
{
    std::mutex mutex;
    std::map<const void*, SharedPages> pages;
};

Views& TheViews()
{
    static Views& views = *new Views;
    return views;
}

Outcome<HANDLE> Create(HANDLE file, DWORD protection, std::uint64_t size, const wchar_t* name,
                       const PlatformCall& call)
{
    if (file != INVALID_HANDLE_VALUE)
    {
        return {nullptr, static_cast<DWORD>(HandleTable::Find(file) == nullptr ? ERROR_INVALID_HANDLE
                                                                               : ERROR_NOT_SUPPORTED)};
    }
    if (size == 0 || (protection != PAGE_READWRITE && protection != PAGE_READONLY))
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    if (size > kLargestMapping)
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    const NewState wanted{ObjectKind::Mapping, protection, 0, size};
    return HandOut<Mapping>(KernelState::Create(name, wanted), SECTION_ALL_ACCESS, call);
}

Outcome<void*> MapView(HANDLE handle, DWORD access, std::uint64_t offset, std::size_t size,
                       const PlatformCall& call)
{
    const auto mapping = HandleTable::Find<Mapping>(handle);
    if (mapping == nullptr)
    {
        return {nullptr, ERROR_INVALID_HANDLE};
    }
    if ((access & (SECTION_MAP_READ | SECTION_MAP_WRITE)) == 0)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    if (offset % kGranularity != 0)
    {
        return {nullptr, ERROR_MAPPED_ALIGNMENT};
    }
    const std::uint64_t end = InWholePages(static_cast<std::size_t>(mapping->State().Size()));
    if (!mapping->Allows(access) || offset >= end || size > end - offset)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    const std::size_t length = size == 0 ? static_cast<std::size_t>(end - offset) : InWholePages(size);
    SharedPages pages = mapping->State().Map(offset, length, (access & SECTION_MAP_WRITE) != 0);
    void* const address = pages.Address();
    if (address == nullptr)
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    Views& views = TheViews();
    const std::lock_guard lock(views.mutex);
    views.pages[address] = std::move(pages);
    if (call.IsObserved())
    {
        Leaks::Opened(kLeakKind, address, call.Function());
    }
    return {address, ERROR_SUCCESS};
}

DWORD Unmap(const void* address)
{
    Views& views = TheViews();
    const std::lock_guard lock(views.mutex);
    if (views.pages.erase(address) == 0)
    {
        return ERROR_INVALID_ADDRESS;
    }
    Leaks::Closed(kLeakKind, address);
    return ERROR_SUCCESS;
}

constexpr std::uint64_t Join(DWORD high, DWORD low) noexcept
{
    return (std::uint64_t{high} << 32) | low;
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection,
                                         DWORD maximumSizeHigh, DWORD maximumSizeLow, LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "CreateFileMappingW", SIM_CALLER);
    const std::uint64_t size = Join(maximumSizeHigh, maximumSizeLow);
    call.Arguments(protection, size, name);
    NoteSecurity(call, attributes);
    SetLastError(ERROR_SUCCESS); // what tells a new object from one that was there
    return call.Result<HANDLE>(nullptr, [&] { return Create(file, protection, size, name, call); });
}

SIM_API HANDLE WINAPI OpenFileMappingW(DWORD access, BOOL inherit, LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "OpenFileMappingW", SIM_CALLER);
    call.Arguments(access, inherit, name);
    return call.Result<HANDLE>(
        nullptr,
        [&] { return HandOut<Mapping>(KernelState::Open(name, ObjectKind::Mapping), access, call); });
}

SIM_API LPVOID WINAPI MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow,
                                    SIZE_T size)
{
    PlatformCall call(CallClass::Object, "MapViewOfFile", SIM_CALLER);
    const std::uint64_t offset = Join(offsetHigh, offsetLow);
    call.Arguments(mapping, access, offset, size);
    return call.Result<void*>(nullptr, [&] { return MapView(mapping, access, offset, size, call); });
}

SIM_API BOOL WINAPI UnmapViewOfFile(LPCVOID view)
{
    PlatformCall call(CallClass::Object, "UnmapViewOfFile", SIM_CALLER);
    call.Arguments(view);
    return call.Release([&] { return Unmap(view); });
}
