// agents/LanAgent.cpp
//
// The adapters' device state and restart. The link speed in the registry is in LanSpeed.cpp.

#include "agents/LanAgent.h"

#include "agents/AdapterSearch.h"
#include "agents/PropertyChange.h"

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

} // namespace

// The wired or the wireless network: the words of its adapters and what its status query logs.
struct CLanAgent::Network
{
    wchar_t (CLanAgent::*firstWord)[text::kPathCapacity];
    wchar_t (CLanAgent::*secondWord)[text::kPathCapacity];
    const wchar_t* listFailed;
    const wchar_t* endReached;
    const wchar_t* readFailed;
    const wchar_t* statusFailed;
    const wchar_t* statusRead;
    const wchar_t* disabled;
    const wchar_t* enabled;

    static const Network kWired;
    static const Network kWireless;
};

constexpr CLanAgent::Network CLanAgent::Network::kWired = {
    &CLanAgent::m_szLanDesc1,
    &CLanAgent::m_szLanDesc2,
    L"GetLANConnectStatus: SetupDiGetClassDevs failed %x",
    L"GetLANConnectStatus: SetupDiEnumDeviceInfo failed!\n",
    L"GetLANConnectStatus: SetupDiGetDeviceRegistryProperty failed %d!\n",
    L"GetLANConnectStatus: CM_Get_DevNode_Status failed!\n",
    L"GetLANConnectStatus: Status=%d, Problem=%d!\n",
    L"GetLANConnectStatus: !((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))",
    L"GetLANConnectStatus: !((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))"};
constexpr CLanAgent::Network CLanAgent::Network::kWireless = {
    &CLanAgent::m_szWlanDesc1,
    &CLanAgent::m_szWlanDesc2,
    L"GetWLANConnectStatus: SetupDiGetClassDevs failed %x",
    L"GetWLANConnectStatus: SetupDiEnumDeviceInfo failed %d!\n",
    L"GetWLANConnectStatus: SetupDiGetDeviceRegistryProperty failed %d!\n",
    L"GetWLANConnectStatus: CM_Get_DevNode_Status failed!\n",
    L"GetWLANConnectStatus: Status=0x%x, Problem=0x%x!\n",
    L"GetWLANConnectStatus: !((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))",
    L"GetWLANConnectStatus: !((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))"};

CLanAgent::CLanAgent() noexcept
    : m_nSupportStatus(0), m_szLanDesc1(), m_szLanDesc2(), m_szWlanDesc1(), m_szWlanDesc2(), m_szSpeedValue()
{
}

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
    return ConnectStatus(Network::kWired);
}

int CLanAgent::GetWLANConnectStatus() noexcept
{
    return ConnectStatus(Network::kWireless);
}

int CLanAgent::SetLANConnectStatus(int enable) noexcept
{
    return SetConnectStatus(Network::kWired, enable);
}

int CLanAgent::SetWLANConnectStatus(int enable) noexcept
{
    return SetConnectStatus(Network::kWireless, enable);
}

int CLanAgent::ConnectStatus(const Network& network) noexcept
{
    const AdapterSearch search = {this->*network.firstWord, this->*network.secondWord, ContainsIgnoringCase,
                                  network.listFailed,       network.endReached,        network.readFailed};
    FoundAdapter adapter;
    if (!FindAdapter(search, adapter))
    {
        return -1;
    }
    ULONG status = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&status, &problem, adapter.device.DevInst, 0) != CR_SUCCESS)
    {
        DBGOUT(network.statusFailed);
        return -1;
    }
    DBGOUT(network.statusRead, status, problem);
    if (IsDisabled(status, problem))
    {
        DBGOUT(network.disabled);
        return 0;
    }
    if (!IsSwitchable(status, problem))
    {
        return -1;
    }
    DBGOUT(network.enabled);
    return 1;
}

int CLanAgent::SetConnectStatus(const Network& network, int enable) noexcept
{
    const AdapterSearch search = {this->*network.firstWord,
                                  this->*network.secondWord,
                                  ContainsIgnoringCase,
                                  L"SetupDiGetClassDevs failed %x",
                                  nullptr,
                                  nullptr};
    FoundAdapter adapter;
    if (!FindAdapter(search, adapter))
    {
        return -1;
    }
    ULONG status = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&status, &problem, adapter.device.DevInst, 0) != CR_SUCCESS)
    {
        DBGOUT(L"CM_Get_DevNode_Status failed!\n");
        return -1;
    }
    if (enable != 0 && !IsDisabled(status, problem))
    {
        DBGOUT(L"!((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))");
        return -1;
    }
    if (enable == 0 && IsDisabled(status, problem))
    {
        DBGOUT(L"(Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem)");
        return -1;
    }
    if (enable == 0 && !IsSwitchable(status, problem))
    {
        DBGOUT(L"!((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))");
        return -1;
    }

    // Asked for in all profiles first and then in the present one; the installer runs once, for the latter.
    const DWORD state = enable != 0 ? DICS_ENABLE : DICS_DISABLE;
    SP_PROPCHANGE_PARAMS change = PropertyChange(state, DICS_FLAG_GLOBAL);
    if (!SetPropertyChange(adapter.list.Get(), adapter.device, change))
    {
        DBGOUT(L"SetupDiSetClassInstallParams_DICS_FLAG_GLOBAL failed for last error %d", GetLastError());
        return -1;
    }
    change = PropertyChange(state, DICS_FLAG_CONFIGSPECIFIC);
    if (SetPropertyChange(adapter.list.Get(), adapter.device, change) &&
        !SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, adapter.list.Get(), &adapter.device))
    {
        DBGOUT(L"SetupDiChangeState failed for last error %x.", GetLastError());
        return -1;
    }
    return 1;
}
