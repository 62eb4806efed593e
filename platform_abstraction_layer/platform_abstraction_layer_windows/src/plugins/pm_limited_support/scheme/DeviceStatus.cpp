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

// What `work` answers on an agent of the controller that is set up; the radio goes by `name`.
template <class Work>
int OnController(const wchar_t* format, const wchar_t* name, Work work) noexcept
{
    CEcAgent agent;
    const LONG opened = agent.Setup();
    return opened < 0 ? ReportFailure(format, name, opened) : work(agent);
}

// The same on the chipset, where 0 stands for every success.
template <class Work>
int OnChipset(const wchar_t* format, const wchar_t* name, Work work) noexcept
{
    CHwSBX chipset;
    const LONG opened = chipset.Setup(1);
    const LONG result = opened < 0 ? opened : work(chipset);
    return result < 0 ? ReportFailure(format, name, result) : 0;
}

// The radio of a variable, or null.
const Radio* RadioOf(const Variable& variable) noexcept
{
    switch (variable.device)
    {
    case LiveDevice::Bluetooth:
        return &kBluetoothRadio;
    case LiveDevice::Wifi:
        return &kWifiRadio;
    case LiveDevice::ChipsetFunction:
    case LiveDevice::None:
        break;
    }
    return nullptr;
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
    if (const Radio* const radio = RadioOf(*variable))
    {
        return OnController(kReadFailed, name,
                            [&](CEcAgent& agent) noexcept
                            {
                                const int value = (agent.*radio->get)();
                                if (value >= 0)
                                {
                                    *status = value != 0 ? 1 : 0;
                                }
                                return value;
                            });
    }
    return variable->device == LiveDevice::None
               ? 0
               : OnChipset(kReadFailed, variable->name,
                           [&](CHwSBX& chipset) noexcept
                           { return chipset.GetFunctionDisable(variable->name, status); });
}

int CSchemeEx::SetDeviceStatus(wchar_t const* name, int value) noexcept
{
    const Variable* const variable = FindVariable(name);
    if (variable == nullptr)
    {
        return -1;
    }
    if (const Radio* const radio = RadioOf(*variable))
    {
        return OnController(kWriteFailed, name,
                            [&](CEcAgent& agent) noexcept { return (agent.*radio->set)(value); });
    }
    return variable->device == LiveDevice::None
               ? 0
               : OnChipset(kWriteFailed, variable->name,
                           [&](CHwSBX& chipset) noexcept
                           { return chipset.FunctionDisable(variable->name, value); });
}
