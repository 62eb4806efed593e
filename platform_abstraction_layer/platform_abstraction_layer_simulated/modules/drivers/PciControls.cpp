// modules/drivers/PciControls.cpp
//
// Configuration space and bus properties of PCI functions, named by their device objects.

#include "base/Text.h"
#include "machine/Chipset.h"
#include "modules/drivers/DriverControls.h"

#include <algorithm>

namespace simulated::orvlebl
{

namespace
{

constexpr DWORD kBusNumber = 14;
constexpr DWORD kAddress = 16;

// A name of a record; nothing when it isn't terminated within its field.
std::optional<std::string> NameIn(const wchar_t (&field)[kNameUnits])
{
    const wchar_t* const end = std::find(field, field + kNameUnits, wchar_t{0});
    if (end == field + kNameUnits)
    {
        return std::nullopt;
    }
    return ToUtf8(field, static_cast<std::size_t>(end - field));
}

DWORD FindFunction(const wchar_t (&field)[kNameUnits], PciAddress& address)
{
    const std::optional<std::string> name = NameIn(field);
    if (!name)
    {
        return kWrongSize;
    }
    const std::optional<PciAddress> found = PciBus::Find(*name);
    address = found.value_or(PciAddress{});
    return found ? DWORD{ERROR_SUCCESS} : kNoSuchThing;
}

} // namespace

DWORD ReadPci(Exchange& exchange)
{
    const auto access = exchange.Input<PciAccess>();
    if (access.length != exchange.out.size())
    {
        return kWrongSize;
    }
    PciAddress address = {};
    if (const DWORD error = FindFunction(access.name, address); error != ERROR_SUCCESS)
    {
        return error;
    }
    // Behind the end of configuration space the bus has nothing to give: fewer bytes, and no error.
    exchange.returned = PciBus::Read(address, access.offset, exchange.out);
    return ERROR_SUCCESS;
}

DWORD WritePci(Exchange& exchange)
{
    const auto access = exchange.Input<PciAccess>();
    const auto data = exchange.Data<PciAccess>(access.length);
    if (!data)
    {
        return kWrongSize;
    }
    PciAddress address = {};
    if (const DWORD error = FindFunction(access.name, address); error != ERROR_SUCCESS)
    {
        return error;
    }
    return PciBus::Write(address, access.offset, *data) ? DWORD{ERROR_SUCCESS} : kWrongSize;
}

DWORD GetProperty(Exchange& exchange)
{
    const auto query = exchange.Input<PropertyQuery>();
    PciAddress address = {};
    if (const DWORD error = FindFunction(query.name, address); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (query.property != kBusNumber && query.property != kAddress)
    {
        return kNoSuchThing;
    }
    if (exchange.out.size() < sizeof(DWORD))
    {
        return kWrongSize;
    }
    exchange.Answer(query.property == kBusNumber ? address.bus : (address.device << 16) | address.function);
    return ERROR_SUCCESS;
}

} // namespace simulated::orvlebl
