// agents/DevMgr.h
//
// Enables and disables devices of the classes that the configuration names, through the process behind the
// boards or directly.
#pragma once

#include "foundation/OrvlBase.h"

#include <setupapi.h>

/// What to do with a device. The value is the device installer's own state change.
enum OrvlDeviceAction : ULONG
{
    OrvlDeviceEnable = DICS_ENABLE,
    OrvlDeviceDisable = DICS_DISABLE
};

/// `Setup` gathers the devices, which `index` then counts from 0. Failures are 0x80004005 unless stated
/// otherwise. The device list is copied with the object, so only one of the copies may clean up.
class ORVL_API CDevMgr : public CORVLBase
{
public:
    CDevMgr() noexcept;
    CDevMgr(const CDevMgr&) noexcept;
    CDevMgr& operator=(const CDevMgr&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CDevMgr() override;

    /// Reads the options and adds all devices of the configured classes. 0, or 1 when it has run already.
    [[nodiscard]] LONG Setup() noexcept;

    /// Lets the devices go; `Setup` may follow.
    LONG Cleanup() noexcept;

    /// How many devices `Setup` added.
    LONG GetDeviceCount() noexcept;

    /// A list box that gets the instance id of each device that `Setup` adds; null for none.
    void SetListenList(HWND window) noexcept;

    /// Does nothing. Always 0.
    LONG ForceRefresh() noexcept;

    /// Changes a device through the service or directly, as the options say; the service's result in the
    /// first case.
    [[nodiscard]] LONG ChangeState(ULONG index, OrvlDeviceAction action) noexcept;

    /// Changes a device through the service.
    [[nodiscard]] LONG DoStateChangeRemote(const wchar_t* instanceId, ULONG action) noexcept;

    /// Changes a device directly. Nothing is done, and 0 given, when a device that isn't started or can't be
    /// disabled is to be disabled.
    [[nodiscard]] static LONG ExecStateChange(const wchar_t* instanceId, ULONG action) noexcept;

    /// Changes the first device with that description, case ignored, directly.
    [[nodiscard]] LONG ExecStateChange2(const wchar_t* driverDesc, ULONG action) noexcept;

    /// The instance id of the first device in depth-first order of the device tree with that description,
    /// case ignored; `size` in characters.
    [[nodiscard]] LONG DrvDescToInstID(const wchar_t* driverDesc, wchar_t* instanceId, ULONG size) noexcept;

    /// Texts of a device, into `size` bytes.
    [[nodiscard]] LONG GetName(ULONG index, wchar_t* text, int size) noexcept;
    [[nodiscard]] LONG GetDesc(ULONG index, wchar_t* text, int size) noexcept;
    [[nodiscard]] LONG GetDevRegProp(ULONG index, ULONG property, wchar_t* text, int size) noexcept;

    /// The instance id of a device, into `size` characters.
    [[nodiscard]] LONG GetInstID(ULONG index, wchar_t* text, int size) noexcept;

    /// Status bits and problem number of a device.
    [[nodiscard]] LONG GetDeviceStatus(ULONG index, ULONG* status, ULONG* problem) noexcept;

protected:
    [[nodiscard]] LONG DoStateChange(void* set, ULONG index, ULONG action) noexcept;
    [[nodiscard]] static LONG DoStateChange(void* set, _SP_DEVINFO_DATA* info, ULONG action) noexcept;

    /// Nonzero when `text` is a GUID in braces.
    [[nodiscard]] int GuidFromString(const wchar_t* text, _GUID* guid) noexcept;

    HWND m_hListenList = nullptr;
    HDEVINFO m_hDevInfoSet = nullptr; ///< null when not set up
    LONG m_nDeviceCount = 0;
    ULONG m_nTimeout = 1000; ///< milliseconds for a service call
    ULONG m_nOptions = 1;    ///< bit 0: changes go through the service

private:
    void AddClass(const GUID& deviceClass) noexcept;
};
