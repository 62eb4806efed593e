// modules/drivers/MemoryControls.cpp
//
// Physical memory: mappings and access through them. A mapping's address is a number that only the driver
// can do anything with. Known difference: mappings belong to the process that made them.

#include "base/Trace.h"
#include "machine/Chipset.h"
#include "modules/drivers/DriverControls.h"

#include <map>
#include <mutex>

namespace simulated::orvlebl
{

namespace
{

struct Mapped
{
    DWORD physicalAddress;
    DWORD length;
};

// Looks like a kernel address, so that nobody takes it for a user-mode one.
constexpr std::uint64_t kFirstAddress = 0xFFFFFA8000000000;
constexpr std::uint64_t kAddressStep = 0x1000;

struct Mappings
{
    std::mutex mutex;
    std::map<std::uint64_t, Mapped> live;
    std::uint64_t next = kFirstAddress;
};

Mappings& TheMappings()
{
    static Mappings& mappings = *new Mappings;
    return mappings;
}

std::uint64_t AddressOf(const DWORD (&halves)[2])
{
    return (std::uint64_t{halves[1]} << 32) | halves[0];
}

const void* LeakName(std::uint64_t address)
{
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(address));
}

// Finds a mapping for an access of `length` bytes from its start.
DWORD FindForAccess(std::uint64_t address, DWORD length, Mapped& mapped)
{
    Mappings& mappings = TheMappings();
    const std::lock_guard lock(mappings.mutex);
    const auto found = mappings.live.find(address);
    if (found == mappings.live.end())
    {
        return kNoSuchThing;
    }
    mapped = found->second;
    return length <= mapped.length ? DWORD{ERROR_SUCCESS} : kWrongSize;
}

} // namespace

DWORD MapMemory(Exchange& exchange)
{
    const auto input = exchange.Input<MapInput>();
    if (input.length == 0 || input.reserved != 0)
    {
        return kWrongSize;
    }
    if (input.addressHigh != 0 || !PhysicalMemory::IsThere(input.addressLow, input.length))
    {
        return kNoSuchThing;
    }
    Mappings& mappings = TheMappings();
    const std::lock_guard lock(mappings.mutex);
    const std::uint64_t address = mappings.next;
    mappings.next += kAddressStep;
    mappings.live[address] = {input.addressLow, input.length};
    if (exchange.isObserved)
    {
        Leaks::Opened("mapping", LeakName(address), "DeviceIoControl");
    }
    // The caller fills in the rest; what the driver leaves there means nothing.
    exchange.Answer(Mapping{{static_cast<DWORD>(address), static_cast<DWORD>(address >> 32)}, 0, 1});
    return ERROR_SUCCESS;
}

DWORD UnmapMemory(Exchange& exchange)
{
    const auto mapping = exchange.Input<Mapping>();
    const std::uint64_t address = AddressOf(mapping.address);
    Mappings& mappings = TheMappings();
    const std::lock_guard lock(mappings.mutex);
    const auto found = mappings.live.find(address);
    if (found == mappings.live.end())
    {
        return kNoSuchThing;
    }
    if (mapping.length != found->second.length || mapping.reserved != 0)
    {
        return kWrongSize;
    }
    mappings.live.erase(found);
    Leaks::Closed("mapping", LeakName(address));
    return ERROR_SUCCESS;
}

DWORD ReadMemory(Exchange& exchange)
{
    const auto access = exchange.Input<MemoryAccess>();
    if (access.length != exchange.out.size())
    {
        return kWrongSize;
    }
    Mapped mapped = {};
    const DWORD error = FindForAccess(AddressOf(access.address), access.length, mapped);
    if (error == ERROR_SUCCESS)
    {
        PhysicalMemory::Read(mapped.physicalAddress, exchange.out);
        exchange.returned = access.length;
    }
    return error;
}

DWORD WriteMemory(Exchange& exchange)
{
    const auto access = exchange.Input<MemoryAccess>();
    const auto data = exchange.Data<MemoryAccess>(access.length);
    if (!data)
    {
        return kWrongSize;
    }
    Mapped mapped = {};
    const DWORD error = FindForAccess(AddressOf(access.address), access.length, mapped);
    if (error == ERROR_SUCCESS)
    {
        PhysicalMemory::Write(mapped.physicalAddress, *data);
    }
    return error;
}

} // namespace simulated::orvlebl
