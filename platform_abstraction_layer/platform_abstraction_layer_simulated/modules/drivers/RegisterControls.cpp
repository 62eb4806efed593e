// modules/drivers/RegisterControls.cpp
//
// What needs no state of the driver's own: firmware control methods, model-specific registers of the core
// that the caller runs on, PCI functions named by their device objects, I/O ports.

#include "base/Text.h"
#include "machine/Chipset.h"
#include "machine/EmbeddedController.h"
#include "machine/Processor.h"
#include "modules/drivers/DriverControls.h"
#include "modules/kernel32/Threads.h"

#include <algorithm>

namespace simulated::orvlebl
{

namespace
{

constexpr DWORD kBatteryRows = 12;

DWORD ReadItem(const MethodInput& input, Exchange& exchange)
{
    const std::optional<DWORD> value = EmbeddedController::Item(input.argument[0]);
    if (!value)
    {
        return kNoSuchThing;
    }
    exchange.Answer(*value);
    return ERROR_SUCCESS;
}

DWORD WriteItem(const MethodInput& input, Exchange& exchange)
{
    const std::optional<DWORD> answer = EmbeddedController::Method("GWRI");
    const std::optional<DWORD> present = EmbeddedController::Item(input.argument[0]);
    if (!answer || !present)
    {
        return kNoSuchThing;
    }
    if (*present == EmbeddedController::kNotFitted)
    {
        exchange.Answer(DWORD{0});
        return ERROR_SUCCESS;
    }
    // The controller's items are bytes.
    EmbeddedController::SetItem(input.argument[0], input.argument[1] & 0xFF);
    exchange.Answer(*answer);
    return ERROR_SUCCESS;
}

DWORD ReadBattery(const MethodInput& input, Exchange& exchange)
{
    const std::optional<EmbeddedController::BatteryRows> rows =
        EmbeddedController::Battery(input.argument[2]);
    if (!rows || input.argument[0] != kBatteryRows)
    {
        return kNoSuchThing;
    }
    exchange.Answer(*rows);
    return ERROR_SUCCESS;
}

struct Method
{
    std::string_view name;
    std::size_t outputSize;
    DWORD (*evaluate)(const MethodInput&, Exchange&);
};

constexpr Method kMethods[] = {
    {"GRDI", sizeof(DWORD), &ReadItem},
    {"GWRI", sizeof(DWORD), &WriteItem},
    {"EBTR", sizeof(EmbeddedController::BatteryRows), &ReadBattery},
};

// A method that isn't in the table returns the number that the firmware has for it.
DWORD ReadNumber(const std::string& name, Exchange& exchange)
{
    const std::optional<DWORD> answer = EmbeddedController::Method(name);
    if (!answer)
    {
        return kNoSuchThing;
    }
    if (exchange.out.size() != sizeof(DWORD))
    {
        return kWrongSize;
    }
    exchange.Answer(*answer);
    return ERROR_SUCCESS;
}

constexpr DWORD kBusNumber = 14;
constexpr DWORD kAddress = 16;

// The function that a record names. The name must be terminated within its field.
DWORD FindFunction(const wchar_t (&field)[kNameUnits], PciAddress& address)
{
    const wchar_t* const end = std::find(field, field + kNameUnits, wchar_t{0});
    if (end == field + kNameUnits)
    {
        return kWrongSize;
    }
    const auto found = PciBus::Find(ToUtf8(field, static_cast<std::size_t>(end - field)));
    address = found.value_or(PciAddress{});
    return found ? DWORD{ERROR_SUCCESS} : kNoSuchThing;
}

bool IsPortAccess(const PortAccess& access)
{
    return access.size == access.sizeWide && (access.size == 1 || access.size == 2 || access.size == 4);
}

} // namespace

DWORD EvaluateMethod(Exchange& exchange)
{
    const auto input = exchange.Input<MethodInput>();
    const std::string name(input.name, sizeof input.name);
    for (const Method& method : kMethods)
    {
        if (name == method.name)
        {
            return exchange.out.size() == method.outputSize ? method.evaluate(input, exchange) : kWrongSize;
        }
    }
    return ReadNumber(name, exchange);
}

DWORD ReadMsr(Exchange& exchange)
{
    const DWORD index = exchange.Input<DWORD>();
    const std::optional<std::uint64_t> value = Processor::Read(CurrentCore(), index);
    if (!value)
    {
        return kNoSuchThing;
    }
    // The first word of a result is unused.
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
    // Reads beyond the end of configuration space return fewer bytes, and no error.
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
