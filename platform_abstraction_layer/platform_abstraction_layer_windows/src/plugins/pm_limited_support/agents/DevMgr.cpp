// agents/DevMgr.cpp
//
// The managed set of devices and the changes made to it. The search in the device tree is in DeviceTree.cpp.

#include "agents/DevMgr.h"

#include "agents/PropertyChange.h"
#include "foundation/GuidText.h"
#include "foundation/Log.h"
#include "foundation/OrvlCfg.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"
#include "foundation/ServiceBoards.h"
#include "foundation/Text.h"

#include <cfgmgr32.h>

#include <iterator>

namespace
{

constexpr wchar_t kConfigFile[] = L"ORVLCfg.ini";
constexpr int kDefaultTimeout = 100000; ///< milliseconds
constexpr ULONG kThroughService = 1;    ///< bit 0 of the options
constexpr DWORD kInstanceIdCapacity = text::kPathCapacity;

// A device list's detail record; its size is part of the call.
static_assert(sizeof(void*) != 4 || sizeof(SP_DEVINFO_LIST_DETAIL_DATA_W) == 550);

// Shows the wait cursor for the length of a scope.
class WaitCursor
{
public:
    WaitCursor() noexcept : m_old(SetCursor(LoadCursorW(nullptr, IDC_WAIT)))
    {
    }
    ~WaitCursor()
    {
        SetCursor(m_old);
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;

private:
    HCURSOR m_old;
};

// The device of that number in a list; false behind the last.
bool FindDevice(HDEVINFO devices, DWORD index, SP_DEVINFO_DATA& device) noexcept
{
    device = EmptyDeviceRecord();
    return SetupDiEnumDeviceInfo(devices, index, &device) != FALSE;
}

} // namespace

CDevMgr::CDevMgr() noexcept = default;
CDevMgr::CDevMgr(const CDevMgr&) noexcept = default;
CDevMgr& CDevMgr::operator=(const CDevMgr&) noexcept = default;

CDevMgr::~CDevMgr()
{
    Cleanup();
}

ULONG CDevMgr::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CDevMgr::Setup() noexcept
{
    if (m_hDevInfoSet != nullptr)
    {
        DBGOUT(L"Setup has been invoked.");
        return kAlreadySetUp;
    }
    CORVLCfg file;
    if (!file.Initialize(kConfigFile))
    {
        DBGOUT(L"Initialize config file %s failed", kConfigFile);
        return kGeneralFailure;
    }
    m_nTimeout = service_boards::ReadTimeout(file, kDefaultTimeout);
    m_nOptions = static_cast<ULONG>(file.GetInt(L"OrvlDevMgr", L"DmOptions", kThroughService));

    owners::DeviceList devices(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    if (!Check(static_cast<bool>(devices), L"SetupDiCreateDeviceInfoList for m_hDevInfoSet failed %x"))
    {
        return kGeneralFailure;
    }
    m_hDevInfoSet = devices.Detach();

    const int classes = file.GetInt(L"DevGUIDs", L"Num", 0);
    for (int index = 0; index < classes; ++index)
    {
        wchar_t guidText[text::kPathCapacity];
        GUID deviceClass = {};
        if (file.GetString(L"DevGUIDs", text::Formatted<32>(L"GUID%d", index).Text(), guidText) < 1)
        {
            return kGeneralFailure;
        }
        if (GuidFromString(guidText, &deviceClass))
        {
            AddClass(deviceClass);
        }
    }
    return kSucceeded;
}

// Adds the devices of a class up to the first that can't be added.
void CDevMgr::AddClass(const GUID& deviceClass) noexcept
{
    const owners::DeviceList devices(SetupDiGetClassDevsW(&deviceClass, nullptr, nullptr, 0));
    if (!devices)
    {
        return;
    }
    SP_DEVINFO_DATA device;
    for (DWORD index = 0; FindDevice(devices.Get(), index, device); ++index)
    {
        wchar_t instanceId[kInstanceIdCapacity];
        if (!SetupDiGetDeviceInstanceIdW(devices.Get(), &device, instanceId, kInstanceIdCapacity, nullptr) ||
            !SetupDiOpenDeviceInfoW(m_hDevInfoSet, instanceId, nullptr, 0, nullptr))
        {
            return;
        }
        if (m_hListenList != nullptr)
        {
            SendMessageW(m_hListenList, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(instanceId));
        }
        ++m_nDeviceCount;
    }
}

LONG CDevMgr::Cleanup() noexcept
{
    if (m_hDevInfoSet == nullptr)
    {
        return kSucceeded;
    }
    if (!SetupDiDestroyDeviceInfoList(m_hDevInfoSet))
    {
        return kGeneralFailure;
    }
    m_hDevInfoSet = nullptr;
    m_nDeviceCount = 0;
    return kSucceeded;
}

LONG CDevMgr::GetDeviceCount() noexcept
{
    return m_nDeviceCount;
}

void CDevMgr::SetListenList(HWND window) noexcept
{
    m_hListenList = window;
}

LONG CDevMgr::ForceRefresh() noexcept
{
    return kSucceeded;
}

int CDevMgr::GuidFromString(const wchar_t* text, _GUID* guid) noexcept
{
    return ParseGuid(text, guid);
}

LONG CDevMgr::ChangeState(ULONG index, OrvlDeviceAction action) noexcept
{
    return DoStateChange(m_hDevInfoSet, index, static_cast<ULONG>(action));
}

LONG CDevMgr::DoStateChange(void* set, ULONG index, ULONG action) noexcept
{
    if ((m_nOptions & kThroughService) != 0)
    {
        wchar_t instanceId[kInstanceIdCapacity];
        const LONG named = GetInstID(index, instanceId, static_cast<int>(std::size(instanceId)));
        return Check(named >= 0, L"DoStateChange failed in GetInstID(). %x")
                   ? DoStateChangeRemote(instanceId, action)
                   : kGeneralFailure;
    }
    SP_DEVINFO_DATA device;
    return FindDevice(set, index, device) ? DoStateChange(set, &device, action) : kGeneralFailure;
}

LONG CDevMgr::DoStateChangeRemote(const wchar_t* instanceId, ULONG action) noexcept
{
    if (instanceId == nullptr)
    {
        return kGeneralFailure;
    }
    IpbDataHeader answer = {};
    return ServiceCall(service_boards::kChangeDevice, instanceId, action, &answer, m_nTimeout);
}

LONG CDevMgr::DoStateChange(void* set, _SP_DEVINFO_DATA* info, ULONG action) noexcept
{
    const WaitCursor cursor;
    SP_PROPCHANGE_PARAMS change = PropertyChange(action, DICS_FLAG_GLOBAL);
    if (!Check(SetPropertyChange(set, *info, change),
               L"SetupDiSetClassInstallParams failed for last error %x."))
    {
        return kGeneralFailure;
    }
    // The default change, past the class's installers. Its result is ignored: what they answer decides.
    SetupDiChangeState(set, info);
    return Check(SetupDiCallClassInstaller(DIF_PROPERTYCHANGE, set, info) != FALSE,
                 L"SetupDiChangeState failed for last error %x.")
               ? kSucceeded
               : kGeneralFailure;
}

LONG CDevMgr::ExecStateChange(const wchar_t* instanceId, ULONG action) noexcept
{
    const owners::DeviceList devices(SetupDiCreateDeviceInfoList(nullptr, nullptr));
    if (!Check(static_cast<bool>(devices), L"ExecStateChange failed in SetupDiCreateDeviceInfoList, le=%x"))
    {
        return kGeneralFailure;
    }
    SP_DEVINFO_DATA device = EmptyDeviceRecord();
    if (instanceId == nullptr || !SetupDiOpenDeviceInfoW(devices.Get(), instanceId, nullptr, 0, &device))
    {
        DBGOUT(L"ExecStateChange failed in SetupDiOpenDeviceInfo(%s), le=%x",
               instanceId == nullptr ? L"" : instanceId, GetLastError());
        return kGeneralFailure;
    }
    ULONG status = 0;
    ULONG problem = 0;
    if (CM_Get_DevNode_Status(&status, &problem, device.DevInst, 0) != CR_SUCCESS)
    {
        return kGeneralFailure;
    }
    constexpr ULONG kCanBeDisabled = DN_STARTED | DN_DISABLEABLE;
    if (action == OrvlDeviceDisable && (status & kCanBeDisabled) != kCanBeDisabled)
    {
        return kSucceeded;
    }
    return DoStateChange(devices.Get(), &device, action);
}

LONG CDevMgr::ExecStateChange2(const wchar_t* driverDesc, ULONG action) noexcept
{
    wchar_t instanceId[kInstanceIdCapacity];
    const LONG found = DrvDescToInstID(driverDesc, instanceId, kInstanceIdCapacity);
    return found < 0 ? found : ExecStateChange(instanceId, action);
}

LONG CDevMgr::GetName(ULONG index, wchar_t* text, int size) noexcept
{
    return GetDevRegProp(index, SPDRP_FRIENDLYNAME, text, size);
}

LONG CDevMgr::GetDesc(ULONG index, wchar_t* text, int size) noexcept
{
    return GetDevRegProp(index, SPDRP_DEVICEDESC, text, size);
}

LONG CDevMgr::GetDevRegProp(ULONG index, ULONG property, wchar_t* text, int size) noexcept
{
    SP_DEVINFO_DATA device;
    const bool isRead =
        size >= 0 && FindDevice(m_hDevInfoSet, index, device) &&
        SetupDiGetDeviceRegistryPropertyW(m_hDevInfoSet, &device, property, nullptr,
                                          reinterpret_cast<BYTE*>(text), static_cast<DWORD>(size), nullptr);
    return isRead ? kSucceeded : kGeneralFailure;
}

LONG CDevMgr::GetInstID(ULONG index, wchar_t* text, int size) noexcept
{
    SP_DEVINFO_DATA device;
    const bool isRead =
        size >= 0 && FindDevice(m_hDevInfoSet, index, device) &&
        SetupDiGetDeviceInstanceIdW(m_hDevInfoSet, &device, text, static_cast<DWORD>(size), nullptr);
    return isRead ? kSucceeded : kGeneralFailure;
}

LONG CDevMgr::GetDeviceStatus(ULONG index, ULONG* status, ULONG* problem) noexcept
{
    SP_DEVINFO_DATA device;
    SP_DEVINFO_LIST_DETAIL_DATA_W detail = {};
    detail.cbSize = sizeof detail;
    const bool isRead = status != nullptr && problem != nullptr && FindDevice(m_hDevInfoSet, index, device) &&
                        SetupDiGetDeviceInfoListDetailW(m_hDevInfoSet, &detail) &&
                        CM_Get_DevNode_Status(status, problem, device.DevInst, 0) == CR_SUCCESS;
    return isRead ? kSucceeded : kGeneralFailure;
}
