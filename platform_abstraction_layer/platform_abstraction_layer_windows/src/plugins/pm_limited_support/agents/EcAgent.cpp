// agents/EcAgent.cpp
//
// Turns the agent's operations into control methods.

#include "agents/EcAgent.h"

#include "agents/DriverCall.h"
#include "agents/LanAgent.h"
#include "foundation/Results.h"

#include <algorithm>

namespace
{

// The rows of the battery method that make up one field.
struct FieldRows
{
    int highByte;
    int lowByte;
};

// In the order of the fields; the firmware orders the first two pairs the other way round.
constexpr FieldRows kFieldRows[] = {{2, 3}, {0, 1}, {4, 5}, {6, 7}};

constexpr int kOn = 1;

// From the switching of the radio until its adapter can be reached.
constexpr DWORD kWifiSettlingTime = 1000;

void EnableWirelessAdapterIfDisabled() noexcept
{
    CLanAgent adapters;
    adapters.Initialize();
    if (adapters.GetWLANConnectStatus() == 0)
    {
        adapters.SetWLANConnectStatus(1);
    }
}

// `isSwitched`: the port has just been switched on, and the adapter is enabled whatever its state.
void EnableWiredAdapter(bool isSwitched) noexcept
{
    CLanAgent adapters;
    adapters.Initialize();
    if (isSwitched || adapters.GetLANConnectStatus() == 0)
    {
        adapters.SetLANConnectStatus(1);
    }
}

} // namespace

CEcAgent::CEcAgent() noexcept = default;
CEcAgent::CEcAgent(const CEcAgent&) noexcept = default;
CEcAgent& CEcAgent::operator=(const CEcAgent&) noexcept = default;

CEcAgent::~CEcAgent()
{
    Cleanup();
}

ULONG CEcAgent::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CEcAgent::Setup() noexcept
{
    const LONG opened = OpenChannel(m_bDriverSetUp);
    if (opened == kSucceeded)
    {
        GetCfgSettings();
    }
    return opened;
}

LONG CEcAgent::Cleanup() noexcept
{
    CloseChannel(m_bDriverSetUp);
    return kSucceeded;
}

LONG CEcAgent::GetCfgSettings() noexcept
{
    m_nBacklightReadItem = m_nBacklightWriteItem = 0xC0;
    m_nWifiReadItem = m_nWifiWriteItem = 0xC1;
    m_nLANReadItem = m_nLANWriteItem = 0xC2;
    // The firmware keeps the display mode under the number of the 3G radio.
    m_n3GReadItem = m_n3GWriteItem = m_nDisplayModeItem = 0xC3;
    m_nBluetoothReadItem = m_nBluetoothWriteItem = 0xC4;
    m_nMaxLevel = 7;
    m_nMinLevel = 0;
    return kSucceeded;
}

LONG CEcAgent::ToExecCtrlMethod(ULONG method, ULONG* result, ULONG arg1, ULONG arg2, ULONG arg3) noexcept
{
    if (!m_bDriverSetUp)
    {
        return kNotSetUp;
    }
    if (result == nullptr)
    {
        return kBadArgument;
    }
    const ControlMethodInput input = {method, {arg1, arg2, arg3}};
    const LONG called = CallDriver(DriverFunction::ExecControlMethod, &input, result, sizeof *result);
    if (called < 0)
    {
        DBGOUT(L"Calling driver function error. 0x%x\n", called);
        return called;
    }
    return kSucceeded;
}

LONG CEcAgent::GeneralRead(ULONG item, ULONG* value) noexcept
{
    return value == nullptr ? kBadArgument : ToExecCtrlMethod(kGeneralRead, value, item, 0, 0);
}

LONG CEcAgent::GeneralWrite(ULONG item, ULONG value, ULONG* result) noexcept
{
    return result == nullptr ? kBadArgument : ToExecCtrlMethod(kGeneralWrite, result, item, value, 0);
}

LONG CEcAgent::GetStatus(ULONG* status) noexcept
{
    return ToExecCtrlMethod(kStatus, status, 0, 0, 0);
}

int CEcAgent::SelfTest(int) noexcept
{
    ULONG word = 0;
    return ToExecCtrlMethod(kDebug, &word, 0, 0, 0) < 0 ? -1 : static_cast<int>(word);
}

int CEcAgent::ReadItem(ULONG item) noexcept
{
    ULONG value = 0;
    return GeneralRead(item, &value) < 0 ? -1 : static_cast<int>(value);
}

int CEcAgent::WriteItem(ULONG item, int value) noexcept
{
    ULONG word = 0;
    return GeneralWrite(item, static_cast<ULONG>(value), &word) < 0 ? -1 : static_cast<int>(word);
}

int CEcAgent::GetMaxLevels() noexcept
{
    return m_nMaxLevel;
}

int CEcAgent::GetMinLevel() noexcept
{
    return m_nMinLevel;
}

int CEcAgent::GetBacklightLevel() noexcept
{
    return ReadItem(m_nBacklightReadItem);
}

int CEcAgent::SetBacklightLevel(int level) noexcept
{
    return level < 0 ? -1
                     : WriteItem(m_nBacklightWriteItem, (std::min)(level, static_cast<int>(m_nMaxLevel)));
}

int CEcAgent::GetWifiStatus() noexcept
{
    return ReadItem(m_nWifiReadItem);
}

int CEcAgent::SetWifiStatus(int status) noexcept
{
    if (status == kOn && GetWifiStatus() == kOn)
    {
        // The controller needs no change, but the adapter may have been disabled by hand.
        EnableWirelessAdapterIfDisabled();
        return kOn;
    }
    ULONG word = 0;
    if (GeneralWrite(m_nWifiWriteItem, static_cast<ULONG>(status), &word) < 0)
    {
        return -1;
    }
    if (status == kOn)
    {
        Sleep(kWifiSettlingTime);
        EnableWirelessAdapterIfDisabled();
    }
    return static_cast<int>(word);
}

int CEcAgent::GetLANStatus() noexcept
{
    return ReadItem(m_nLANReadItem);
}

int CEcAgent::SetLANStatus(int status) noexcept
{
    if (status == kOn && GetLANStatus() == kOn)
    {
        EnableWiredAdapter(false); // which may have been disabled by hand
        return kOn;
    }
    ULONG word = 0;
    if (GeneralWrite(m_nLANWriteItem, static_cast<ULONG>(status), &word) < 0)
    {
        return -1;
    }
    if (status == kOn)
    {
        EnableWiredAdapter(true);
    }
    return static_cast<int>(word);
}

int CEcAgent::Get3GStatus() noexcept
{
    return ReadItem(m_n3GReadItem);
}

int CEcAgent::Set3GStatus(int status) noexcept
{
    return WriteItem(m_n3GWriteItem, status);
}

int CEcAgent::GetBluetoothStatus() noexcept
{
    return ReadItem(m_nBluetoothReadItem);
}

int CEcAgent::SetBluetoothStatus(int status) noexcept
{
    return WriteItem(m_nBluetoothWriteItem, status);
}

int CEcAgent::GetCurrentDisplayMode() noexcept
{
    return ReadItem(m_nDisplayModeItem);
}

int CEcAgent::SwitchDisplayMode() noexcept
{
    return WriteItem(m_nDisplayModeItem, 0);
}

int CEcAgent::GetAudioJackin() noexcept
{
    return kGeneralFailure;
}

int CEcAgent::GetBatteryTemp() noexcept
{
    return kGeneralFailure;
}

int CEcAgent::GetHotkeyIndex() noexcept
{
    return kGeneralFailure;
}

LONG CEcAgent::GetBatteryExtends(_BATTERY_EXTEND_FIELDS* fields, ULONG selector) noexcept
{
    if (!m_bDriverSetUp)
    {
        return kNotSetUp;
    }
    if (fields == nullptr)
    {
        return kBadArgument;
    }
    const ControlMethodInput input = {ORVL_GCW_BATTERY_METHOD, {kBatteryRows, 0, selector}};
    ULONG rows[kBatteryRows] = {};
    DWORD returned = 0;
    const LONG called = CallDriver(DriverFunction::ExecControlMethod, &input, rows, sizeof rows, returned);
    if (called < 0)
    {
        DBGOUT(L"Calling driver function ORVL_GCW_BATTERY_METHOD error. Last error 0x%x ulReturn %d", called,
               returned);
        return called;
    }
    for (ULONG row = 0; row < kBatteryRows; ++row)
    {
        DBGOUT(L"BatteryExtRow[%d] = %d", row, rows[row]);
    }
    ULONG* field = fields->field;
    for (const FieldRows& pair : kFieldRows)
    {
        *field++ = ((rows[pair.highByte] & 0xFF) << 8) | (rows[pair.lowByte] & 0xFF);
    }
    return kSucceeded;
}
