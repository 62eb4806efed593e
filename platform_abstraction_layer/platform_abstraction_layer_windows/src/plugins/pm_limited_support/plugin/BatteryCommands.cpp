// plugin/BatteryCommands.cpp
//
// The commands on batteries and the power source.

#include "agents/EcAgent.h"
#include "foundation/Log.h"
#include "plugin/DeviceCommands.h"
#include "plugin/RequestIo.h"
#include "plugin/WireRecords.h"
#include "scheme/SchemeEx.h"

#include <poclass.h>

#include <algorithm>
#include <iterator>

namespace device_commands
{

namespace
{

constexpr LONG kUnknown = -1;
constexpr BYTE kOnMains = 1;
constexpr BYTE kNoBattery = 0x80; // set in the flag for an unknown state as well
constexpr BYTE kUnknownByte = 255;

// The states that a flag field may hold at once, in the order in which each reply looks for them: a battery
// reply takes the first, a power reply the last that is set.
constexpr ULONG kBatteryStates[] = {BATTERY_DISCHARGING, BATTERY_POWER_ON_LINE, BATTERY_CHARGING,
                                    BATTERY_CRITICAL};
constexpr ULONG kPowerStates[] = {BATTERY_DISCHARGING, BATTERY_POWER_ON_LINE, BATTERY_CHARGING};

// What the system knows of the power source: nothing when it doesn't answer.
SYSTEM_POWER_STATUS ReadPower(CSchemeEx& engine) noexcept
{
    SYSTEM_POWER_STATUS power{};
    power.ACLineStatus = power.BatteryFlag = power.BatteryLifePercent = kUnknownByte;
    engine.GetSystemPowerStatus(&power);
    return power;
}

bool HasNoBattery(const SYSTEM_POWER_STATUS& status) noexcept
{
    return (status.BatteryFlag & kNoBattery) != 0;
}

LONG Percent(const SYSTEM_POWER_STATUS& status) noexcept
{
    return status.BatteryLifePercent == kUnknownByte ? kUnknown : status.BatteryLifePercent;
}

// The firmware's part of the record; false when it can't be read.
bool FillExtendedFields(CEcAgent& agent, PM_Battery_Info& info) noexcept
{
    _BATTERY_EXTEND_FIELDS fields{};
    const bool read = agent.GetBatteryExtends(&fields, kExtendedBatteryRecord) >= 0;
    agent.Cleanup();
    if (read)
    {
        std::copy_n(fields.field, std::size(info.extendedField), info.extendedField);
    }
    return read;
}

// The operating system's part of the record.
void FillBattery(CSchemeEx& engine, int index, const SYSTEM_POWER_STATUS& power,
                 PM_Battery_Info& info) noexcept
{
    _BATTERY_STATUS status{};
    engine.GetBatteryStatus(index, status);
    const auto* const state = std::find_if(std::begin(kBatteryStates), std::end(kBatteryStates),
                                           [&](ULONG flag) { return (status.PowerState & flag) != 0; });
    info.powerState = state == std::end(kBatteryStates) ? 0 : static_cast<LONG>(*state);
    info.time = static_cast<LONG>(engine.GetCompleteTime(index));
    info.percent = Percent(power);

    _BATTERY_INFORMATION battery{};
    engine.GetBatteryInfo(index, battery);
    info.designedCapacity = static_cast<LONG>(battery.DesignedCapacity);
    info.fullChargedCapacity = static_cast<LONG>(battery.FullChargedCapacity);
    std::memcpy(info.chemistry, battery.Chemistry, sizeof info.chemistry);
}

} // namespace

LONG GetBatteryCount(CPluginHelper&, const PM_Request& request) noexcept
{
    CSchemeEx engine;
    engine.Initialize();
    const auto count = static_cast<LONG>(engine.GetBatteryCount());
    if (count < 0)
    {
        return TRX_OPERATION_FAIL;
    }
    request_io::WriteReply(request, count);
    PmLog(L"Get battery count %d.\n", count);
    return TRX_OPERATION_OK;
}

LONG GetBatteryInfo(CPluginHelper&, const PM_Request& request) noexcept
{
    const auto index = request_io::ReadPayload<LONG>(request);
    if (request_io::ReadReplySize(request) < sizeof(PM_Battery_Info) || index < 0)
    {
        return TRX_OPERATION_FAIL;
    }
    PM_Battery_Info info{};
    request_io::WriteReply(request, info);

    CSchemeEx engine;
    engine.Initialize();
    const SYSTEM_POWER_STATUS power = ReadPower(engine);
    if (power.ACLineStatus == kOnMains && HasNoBattery(power))
    {
        info.powerState = BATTERY_POWER_ON_LINE;
        info.percent = kUnknown;
        info.time = kUnknown;
        request_io::WriteReply(request, info);
        return TRX_OPERATION_OK;
    }

    CEcAgent agent;
    if (agent.Setup() < 0)
    {
        return TRX_OPERATION_FAIL;
    }
    const bool extended = FillExtendedFields(agent, info);
    FillBattery(engine, static_cast<int>(index), power, info);
    request_io::WriteReply(request, info);
    if (!extended)
    {
        // The rest of the record stands, but it isn't counted as a reply.
        request_io::WriteReplySize(request, 0);
        return TRX_OPERATION_FAIL;
    }
    return TRX_OPERATION_OK;
}

LONG GetPowerInfo(CPluginHelper&, const PM_Request& request) noexcept
{
    if (request_io::ReadReplySize(request) < sizeof(PM_Power_Info))
    {
        PmLog(L"Get power information failed for smaller length.\n");
        return TRX_OPERATION_FAIL;
    }
    PM_Power_Info info{kUnknown, kUnknown, kUnknown};
    CSchemeEx engine;
    engine.Initialize();
    const SYSTEM_POWER_STATUS power = ReadPower(engine);
    if (!HasNoBattery(power))
    {
        _BATTERY_STATUS status{};
        engine.GetBatteryStatus(0, status);
        for (const ULONG state : kPowerStates)
        {
            if ((status.PowerState & state) != 0)
            {
                info.powerState = static_cast<LONG>(state);
            }
        }
        info.time = static_cast<LONG>(engine.GetCompleteTime(0));
        info.percent = Percent(power);
    }
    else if (power.ACLineStatus == kOnMains)
    {
        info.powerState = BATTERY_POWER_ON_LINE;
    }
    request_io::WriteReply(request, info);
    PmLog(L"Get Power status=%d, Percent=%d, Time=%d\n", info.powerState, info.percent, info.time);
    return TRX_OPERATION_OK;
}

} // namespace device_commands
