// modules/drivers/MethodControls.cpp
//
// Firmware control methods: the general reading and writing of the embedded controller's items, the battery
// record, and those that answer a number.

#include "machine/EmbeddedController.h"
#include "modules/drivers/DriverControls.h"

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

// A method that isn't in the table answers the number that the firmware has for it.
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

} // namespace simulated::orvlebl
