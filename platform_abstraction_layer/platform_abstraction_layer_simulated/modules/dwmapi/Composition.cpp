// modules/dwmapi/Composition.cpp
//
// Desktop composition, a switch of the whole machine up to version 6.1; from 6.2 on switching succeeds and
// changes nothing. machine.ini, section "Desktop": "Composition=1". Known difference: it isn't tied to the
// process that switched it and stays as it is when that one ends.

#include "base/PlatformCall.h"
#include "machine/Machine.h"
#include "modules/kernel32/Modules.h"
#include "modules/kernel32/SystemVersion.h"

#include <dwmapi.h>

namespace simulated
{

namespace
{

constexpr DWORD kSinceMajor = 6;
constexpr DWORD kLastSwitchableMinor = 1;

HRESULT Compose(UINT action)
{
    if (action != DWM_EC_DISABLECOMPOSITION && action != DWM_EC_ENABLECOMPOSITION)
    {
        return E_INVALIDARG;
    }
    const SystemVersion version = ReadSystemVersion();
    if (version.major == kSinceMajor && version.minor <= kLastSwitchableMinor)
    {
        Machine::WriteNumber("Desktop", "Composition", action == DWM_EC_ENABLECOMPOSITION);
    }
    return S_OK;
}

HRESULT TellComposed(BOOL* enabled)
{
    if (enabled == nullptr)
    {
        return E_INVALIDARG;
    }
    *enabled = Machine::ReadNumber("Desktop", "Composition", 0) != 0;
    return S_OK;
}

const modules::Export kExports[] = {
    {"DwmEnableComposition", 0, modules::Address(&DwmEnableComposition)},
    {"DwmIsCompositionEnabled", 0, modules::Address(&DwmIsCompositionEnabled)},
};
const modules::Registration kRegistration("dwmapi.dll", kExports, kSinceMajor);

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API HRESULT WINAPI DwmEnableComposition(UINT action)
{
    PlatformCall call(CallClass::Window, "DwmEnableComposition", SIM_CALLER);
    call.Arguments(action);
    return call.Com([&] { return Compose(action); });
}

SIM_API HRESULT WINAPI DwmIsCompositionEnabled(BOOL* enabled)
{
    PlatformCall call(CallClass::Window, "DwmIsCompositionEnabled", SIM_CALLER);
    return call.Com([&] { return TellComposed(enabled); });
}
