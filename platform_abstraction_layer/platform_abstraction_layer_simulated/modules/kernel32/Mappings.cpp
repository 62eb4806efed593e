// modules/kernel32/Mappings.cpp
//
// File mappings that are backed by the page file, and views of them. A view is bounded by the mapping's size
// rounded up to whole pages, and stays good when the handle is closed.
//
// Known differences from Windows: mappings are in memory, below 4 GB and writable; views begin at their
// beginning.

#include "base/Trace.h"
#include "modules/kernel32/KernelState.h"

#include <windows.h>

#include <map>
#include <mutex>

namespace simulated
{

namespace
{

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

    // True when the handle's rights allow a view with `access`.
    bool Allows(DWORD access) const noexcept
    {
        return (m_access & ((access & SECTION_MAP_WRITE) != 0 ? SECTION_MAP_WRITE : SECTION_MAP_READ)) != 0;
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

Outcome<void*> MapView(HANDLE handle, DWORD access, std::size_t size, const PlatformCall& call)
{
    const auto mapping = HandleTable::Find<Mapping>(handle);
    if (mapping == nullptr)
    {
        return {nullptr, ERROR_INVALID_HANDLE};
    }
    const std::size_t whole = InWholePages(static_cast<std::size_t>(mapping->State().Size()));
    if (!mapping->Allows(access) || size > whole)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    SharedPages pages =
        mapping->State().Map(size == 0 ? whole : InWholePages(size), (access & SECTION_MAP_WRITE) != 0);
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

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection,
                                         DWORD maximumSizeHigh, DWORD maximumSizeLow, LPCWSTR name)
{
    PlatformCall call(CallClass::Object, "CreateFileMappingW", SIM_CALLER);
    call.Arguments(protection, maximumSizeLow, name);
    NoteSecurity(call, attributes);
    SetLastError(ERROR_SUCCESS); // distinguishes a new object from an existing one
    return call.Result<HANDLE>(nullptr,
                               [&]() -> Outcome<HANDLE>
                               {
                                   if (file != INVALID_HANDLE_VALUE || protection != PAGE_READWRITE ||
                                       maximumSizeHigh != 0 || maximumSizeLow == 0)
                                   {
                                       return {nullptr, ERROR_INVALID_PARAMETER};
                                   }
                                   const NewState wanted{.kind = ObjectKind::Mapping, .size = maximumSizeLow};
                                   return HandOut<Mapping>(KernelState::Create(name, wanted),
                                                           SECTION_ALL_ACCESS, call);
                               });
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
    call.Arguments(mapping, access, offsetLow, size);
    return call.Result<void*>(nullptr,
                              [&]() -> Outcome<void*>
                              {
                                  return offsetHigh != 0 || offsetLow != 0
                                             ? Outcome<void*>{nullptr, ERROR_INVALID_PARAMETER}
                                             : MapView(mapping, access, size, call);
                              });
}

SIM_API BOOL WINAPI UnmapViewOfFile(LPCVOID view)
{
    PlatformCall call(CallClass::Object, "UnmapViewOfFile", SIM_CALLER);
    call.Arguments(view);
    return call.Release([&] { return Unmap(view); });
}
