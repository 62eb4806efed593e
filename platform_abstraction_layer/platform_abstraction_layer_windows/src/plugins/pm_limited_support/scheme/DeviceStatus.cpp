// scheme/DeviceStatus.cpp
//
// Live device state by a variable's name: the radios through the embedded controller, the chipset's
// functions through its registers. Each call sets up an agent of its own; below major version 6 that opens
// the driver's channel and closes it again, from 6 on the channel stays open.

#include "agents/HwSBX.h"
#include "agents/Radio.h"
#include "foundation/Results.h"
#include "scheme/SchemeEx.h"
#include "scheme/VariableTable.h"

namespace
{

constexpr const wchar_t* kReadFailed = L"Get %s device status failed for HRESULT: 0x%x";
constexpr const wchar_t* kWriteFailed = L"Set %s device status failed for HRESULT: 0x%x";

int ReportFailure(const wchar_t* format, const wchar_t* name, LONG code) noexcept
{
    CORVLBase::DBGOUT(format, name, code);
    return -1;
}

int ReadRadio(const Radio& radio, const wchar_t* name, int* status) noexcept
{
    CEcAgent agent;
    if (const LONG opened = agent.Setup(); opened < 0)
    {
        return ReportFailure(kReadFailed, name, opened);
    }
    const int value = (agent.*radio.get)();
    if (value >= 0)
    {
        *status = value != 0 ? 1 : 0;
    }
    return value;
}

int WriteRadio(const Radio& radio, const wchar_t* name, int value) noexcept
{
    CEcAgent agent;
    const LONG opened = agent.Setup();
    return opened < 0 ? ReportFailure(kWriteFailed, name, opened) : (agent.*radio.set)(value);
}

int ReadFunction(const wchar_t* name, int* status) noexcept
{
    CHwSBX chipset;
    LONG result = chipset.Setup(1);
    if (result >= 0)
    {
        result = chipset.GetFunctionDisable(name, status);
    }
    return result < 0 ? ReportFailure(kReadFailed, name, result) : 0;
}

int WriteFunction(const wchar_t* name, int value) noexcept
{
    CHwSBX chipset;
    LONG result = chipset.Setup(1);
    if (result >= 0)
    {
        result = chipset.FunctionDisable(name, value);
    }
    return result < 0 ? ReportFailure(kWriteFailed, name, result) : 0;
}

} // namespace

int CSchemeEx::GetDeviceStatus(wchar_t const* name, int* status) noexcept
{
    const Variable* const variable = FindVariable(name);
    if (variable == nullptr)
    {
        return -1;
    }
    if (status == nullptr)
    {
        return variable->device == LiveDevice::None ? 0 : -1;
    }
    switch (variable->device)
    {
    case LiveDevice::Bluetooth:
        return ReadRadio(kBluetoothRadio, name, status);
    case LiveDevice::Wifi:
        return ReadRadio(kWifiRadio, name, status);
    case LiveDevice::ChipsetFunction:
        return ReadFunction(variable->name, status);
    case LiveDevice::None:
        break;
    }
    return 0;
}

int CSchemeEx::SetDeviceStatus(wchar_t const* name, int value) noexcept
{
    const Variable* const variable = FindVariable(name);
    if (variable == nullptr)
    {
        return -1;
    }
    switch (variable->device)
    {
    case LiveDevice::Bluetooth:
        return WriteRadio(kBluetoothRadio, name, value);
    case LiveDevice::Wifi:
        return WriteRadio(kWifiRadio, name, value);
    case LiveDevice::ChipsetFunction:
        return WriteFunction(variable->name, value);
    case LiveDevice::None:
        break;
    }
    return 0;
}
