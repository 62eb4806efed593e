// modules/drivers/RegisterControls.cpp
//
// Model-specific registers of the core that the caller runs on, and I/O ports.

#include "machine/Chipset.h"
#include "machine/Processor.h"
#include "modules/drivers/DriverControls.h"
#include "modules/kernel32/Threads.h"

namespace simulated::orvlebl
{

namespace
{

bool IsPortSize(DWORD size)
{
    return size == 1 || size == 2 || size == 4;
}

bool IsPortAccess(const PortAccess& access)
{
    return access.size == access.sizeWide && IsPortSize(access.sizeWide);
}

} // namespace

DWORD ReadMsr(Exchange& exchange)
{
    const DWORD index = exchange.Input<DWORD>();
    const std::optional<std::uint64_t> value = Processor::Read(CurrentCore(), index);
    if (!value)
    {
        return kNoSuchThing;
    }
    // The first word means nothing in an answer.
    exchange.Answer(Msr{0, static_cast<DWORD>(*value >> 32), static_cast<DWORD>(*value)});
    return ERROR_SUCCESS;
}

DWORD WriteMsr(Exchange& exchange)
{
    const auto msr = exchange.Input<Msr>();
    return Processor::Write(CurrentCore(), msr.index, (std::uint64_t{msr.high} << 32) | msr.low);
}

DWORD ReadPort(Exchange& exchange)
{
    const auto access = exchange.Input<PortAccess>();
    if (!IsPortAccess(access) || exchange.out.size() != access.size)
    {
        return kWrongSize;
    }
    const std::optional<DWORD> value = IoPorts::Read(access.port, access.size);
    if (!value)
    {
        return kNoSuchThing;
    }
    std::memcpy(exchange.out.data(), &*value, access.size);
    exchange.returned = access.size;
    return ERROR_SUCCESS;
}

DWORD WritePort(Exchange& exchange)
{
    const auto access = exchange.Input<PortAccess>();
    const auto data = exchange.Data<PortAccess>(access.sizeWide);
    if (!data || !IsPortAccess(access))
    {
        return kWrongSize;
    }
    DWORD value = 0;
    std::memcpy(&value, data->data(), data->size());
    return IoPorts::Write(access.port, access.size, value) ? ERROR_SUCCESS : kNoSuchThing;
}

} // namespace simulated::orvlebl
