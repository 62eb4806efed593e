// base/HandleTable.cpp
//
// Handles are small multiples of four, as on Windows; the lowest free one is given out, so that a handle used
// after its closing soon meets another object, as it would there.

#include "base/HandleTable.h"

#include "base/Trace.h"

#include <map>
#include <mutex>

namespace simulated
{

namespace
{

struct Entry
{
    std::shared_ptr<Object> object;
    bool counted; ///< the leak count knows it
};

struct Table
{
    std::mutex mutex;
    std::map<std::uintptr_t, Entry> entries;
};

// Never destroyed: threads may outlive the library's teardown.
Table& TheTable()
{
    static Table& table = *new Table;
    return table;
}

constexpr std::uintptr_t kFirstHandle = 0x40;
constexpr std::uintptr_t kHandleStep = 4;

const char* LeakKind(ObjectKind kind)
{
    switch (kind)
    {
    case ObjectKind::Key:
        return "key";
    case ObjectKind::DeviceList:
        return "device list";
    default:
        return "handle";
    }
}

} // namespace

void* HandleTable::Insert(std::shared_ptr<Object> object, const PlatformCall& call)
{
    Table& table = TheTable();
    const std::lock_guard lock(table.mutex);
    std::uintptr_t handle = kFirstHandle;
    for (const auto& [used, entry] : table.entries)
    {
        if (used != handle)
        {
            break;
        }
        handle += kHandleStep;
    }
    void* const result = reinterpret_cast<void*>(handle);
    const bool counted = call.IsObserved() && !object->LivesWithTheProcess();
    if (counted)
    {
        Leaks::Opened(LeakKind(object->Kind()), result, call.Function());
    }
    table.entries[handle] = {std::move(object), counted};
    return result;
}

std::shared_ptr<Object> HandleTable::Find(const void* handle)
{
    Table& table = TheTable();
    const std::lock_guard lock(table.mutex);
    const auto found = table.entries.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == table.entries.end() ? nullptr : found->second.object;
}

DWORD HandleTable::Close(const void* handle)
{
    Table& table = TheTable();
    std::shared_ptr<Object> last; // declared first, so released after the lock: its destructor may call back
    const std::lock_guard lock(table.mutex);
    const auto found = table.entries.find(reinterpret_cast<std::uintptr_t>(handle));
    if (found == table.entries.end())
    {
        return ERROR_INVALID_HANDLE;
    }
    last = std::move(found->second.object);
    if (found->second.counted)
    {
        Leaks::Closed(LeakKind(last->Kind()), handle);
    }
    table.entries.erase(found);
    return ERROR_SUCCESS;
}

} // namespace simulated
