// agents/LanAgent.cpp
//
// The adapters' device state and restart. The link speed in the registry is in LanSpeed.cpp.

#include "agents/LanAgent.h"

#include "agents/AdapterSearch.h"
#include "agents/PropertyChange.h"
#include "foundation/Log.h"

#include <cfgmgr32.h>
#include <shlwapi.h>

namespace
{

bool ContainsIgnoringCase(const wchar_t* whole, const wchar_t* part) noexcept
{
    return StrStrIW(whole, part) != nullptr;
}

bool IsDisabled(ULONG status, ULONG problem) noexcept
{
    return (status & DN_HAS_PROBLEM) != 0 && problem == CM_PROB_DISABLED;
}

// False for a device that mustn't be disabled, and for one that a hardware switch has disabled.
bool IsSwitchable(ULONG status, ULONG problem) noexcept
{
    return (status & DN_DISABLEABLE) != 0 && problem != CM_PROB_HARDWARE_DISABLED;
}

// What the status query of a network logs.
struct StatusTexts
{
    const wchar_t* listFailed;
    const wchar_t* endReached;
    const wchar_t* readFailed;
    const wchar_t* statusFailed;
    const wchar_t* statusRead;
    const wchar_t* disabled;
    const wchar_t* enabled;
};

constexpr StatusTexts kWired = {
    L"GetLANConnectStatus: SetupDiGetClassDevs failed %x",
    L"GetLANConnectStatus: SetupDiEnumDeviceInfo failed!\n",
    L"GetLANConnectStatus: SetupDiGetDeviceRegistryProperty failed %d!\n",
    L"GetLANConnectStatus: CM_Get_DevNode_Status failed!\n",
    L"GetLANConnectStatus: Status=%d, Problem=%d!\n",
    L"GetLANConnectStatus: !((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))",
    L"GetLANConnectStatus: !((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))"};
constexpr StatusTexts kWireless = {
    L"GetWLANConnectStatus: SetupDiGetClassDevs failed %x",
    L"GetWLANConnectStatus: SetupDiEnumDeviceInfo failed %d!\n",
    L"GetWLANConnectStatus: SetupDiGetDeviceRegistryProperty failed %d!\n",
    L"GetWLANConnectStatus: CM_Get_DevNode_Status failed!\n",
    L"GetWLANConnectStatus: Status=0x%x, Problem=0x%x!\n",
    L"GetWLANConnectStatus: !((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))",
    L"GetWLANConnectStatus: !((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))"};

// Finds the adapter with its state and problem number. False when there is none, and, with `statusFailed`
// logged, when its state can't be read.
bool FindAdapterState(const AdapterSearch& search, const wchar_t* statusFailed, FoundAdapter& adapter,
                      ULONG& status, ULONG& problem) noexcept
{
    return FindAdapter(search, adapter) &&
           Check(CM_Get_DevNode_Status(&status, &problem, adapter.device.DevInst, 0) == CR_SUCCESS,
                 statusFailed);
}

int ConnectStatus(const wchar_t* firstWord, const wchar_t* secondWord, const StatusTexts& texts) noexcept
{
    const AdapterSearch search = {firstWord,        secondWord,       ContainsIgnoringCase,
                                  texts.listFailed, texts.endReached, texts.readFailed};
    FoundAdapter adapter;
    ULONG status = 0;
    ULONG problem = 0;
    if (!FindAdapterState(search, texts.statusFailed, adapter, status, problem))
    {
        return -1;
    }
    CORVLBase::DBGOUT(texts.statusRead, status, problem);
    if (IsDisabled(status, problem))
    {
        CORVLBase::DBGOUT(texts.disabled);
        return 0;
    }
    if (!IsSwitchable(status, problem))
    {
        return -1;
    }
    CORVLBase::DBGOUT(texts.enabled);
    return 1;
}

int SetConnectStatus(const wchar_t* firstWord, const wchar_t* secondWord, int enable) noexcept
{
    const AdapterSearch search = {
        firstWord, secondWord, ContainsIgnoringCase, L"SetupDiGetClassDevs failed %x", nullptr, nullptr};
    FoundAdapter adapter;
    ULONG status = 0;
    ULONG problem = 0;
    if (!FindAdapterState(search, L"CM_Get_DevNode_Status failed!\n", adapter, status, problem))
    {
        return -1;
    }
    const bool isDisabled = IsDisabled(status, problem);
    if (!Check(enable == 0 || isDisabled, L"!((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))") ||
        !Check(enable != 0 || !isDisabled, L"(Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem)") ||
        !Check(enable != 0 || IsSwitchable(status, problem),
               L"!((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))"))
    {
        return -1;
    }

    // Asked for in all profiles first and then in the present one; the installer runs once, for the latter.
    const DWORD state = enable != 0 ? DICS_ENABLE : DICS_DISABLE;
    SP_PROPCHANGE_PARAMS change = PropertyChange(state, DICS_FLAG_GLOBAL);
    if (!Check(SetPropertyChange(adapter.list.Get(), adapter.device, change),
               L"SetupDiSetClassInstallParams_DICS_FLAG_GLOBAL failed for last error %d"))
    {
        return -1;
    }
    change = PropertyChange(state, DICS_FLAG_CONFIGSPECIFIC);
    const bool isDone =
        !SetPropertyChange(adapter.list.Get(), adapter.device, change) ||
        Check(SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, adapter.list.Get(), &adapter.device) != FALSE,
              L"SetupDiChangeState failed for last error %x.");
    return isDone ? 1 : -1;
}

} // namespace

CLanAgent::CLanAgent() noexcept = default;
CLanAgent::CLanAgent(const CLanAgent&) noexcept = default;
CLanAgent& CLanAgent::operator=(const CLanAgent&) noexcept = default;
CLanAgent::~CLanAgent() = default;

ULONG CLanAgent::GetVersion() noexcept
{
    return kClassVersion;
}

int CLanAgent::Initialize() noexcept
{
    DBGOUT(L"Initialize LanAgent");
    text::Copy(m_szLanDesc1, L"Realtek");
    text::Copy(m_szLanDesc2, L"JMicron");
    text::Copy(m_szWlanDesc1, L"Wireless");
    text::Copy(m_szWlanDesc2, L"Wifi");
    text::Copy(m_szSpeedValue, L"DuplexMode");
    DBGOUT(L"wlan driver desc1 is %s", m_szWlanDesc1);
    DBGOUT(L"wlan driver desc2 is %s", m_szWlanDesc2);
    return 1;
}

ULONG CLanAgent::CheckSupportStatus() noexcept
{
    m_nSupportStatus = 0;
    return m_nSupportStatus;
}

int CLanAgent::GetEblLevel() noexcept
{
    return 0;
}

int CLanAgent::SetEblLevel(int) noexcept
{
    return 0;
}

int CLanAgent::ApplySettings() noexcept
{
    const AdapterSearch search = {
        m_szLanDesc1, m_szLanDesc2, text::Contains, L"SetupDiGetClassDevs failed %x", nullptr, nullptr};
    FoundAdapter adapter;
    if (!FindAdapter(search, adapter))
    {
        return -1;
    }
    SP_PROPCHANGE_PARAMS restart = PropertyChange(DICS_PROPCHANGE, DICS_FLAG_GLOBAL);
    if (SetPropertyChange(adapter.list.Get(), adapter.device, restart) &&
        SetupDiChangeState(adapter.list.Get(), &adapter.device))
    {
        DBGOUT(L"Setup the lan speed successfully!");
    }
    return 1;
}

int CLanAgent::GetLANConnectStatus() noexcept
{
    return ConnectStatus(m_szLanDesc1, m_szLanDesc2, kWired);
}

int CLanAgent::GetWLANConnectStatus() noexcept
{
    return ConnectStatus(m_szWlanDesc1, m_szWlanDesc2, kWireless);
}

int CLanAgent::SetLANConnectStatus(int enable) noexcept
{
    return SetConnectStatus(m_szLanDesc1, m_szLanDesc2, enable);
}

int CLanAgent::SetWLANConnectStatus(int enable) noexcept
{
    return SetConnectStatus(m_szWlanDesc1, m_szWlanDesc2, enable);
}
