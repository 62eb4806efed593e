// include/setupapi.h
//
// setupapi: the device installer. Records have the documented fields; they are packed on a 32-bit build as
// Windows packs them there, and aligned naturally otherwise, so every size field is a sizeof.
#pragma once

#include <windows.h>

using HDEVINFO = PVOID;
using DI_FUNCTION = UINT;

#define SP_MAX_MACHINENAME_LENGTH (MAX_PATH + 3)

#if UINTPTR_MAX == 0xFFFFFFFFU
#pragma pack(push, 1)
#else
#pragma pack(push, 8)
#endif

/// One device of a list.
typedef struct _SP_DEVINFO_DATA
{
    DWORD cbSize;
    GUID ClassGuid; ///< setup class
    DWORD DevInst;  ///< the configuration manager's handle of the device
    ULONG_PTR Reserved;
} SP_DEVINFO_DATA, *PSP_DEVINFO_DATA;

/// One interface of a device, such as that of a battery.
typedef struct _SP_DEVICE_INTERFACE_DATA
{
    DWORD cbSize;
    GUID InterfaceClassGuid;
    DWORD Flags; ///< SPINT_...
    ULONG_PTR Reserved;
} SP_DEVICE_INTERFACE_DATA, *PSP_DEVICE_INTERFACE_DATA;

/// The path to open an interface by. `cbSize` is the size of this record with its one character, whatever
/// room follows.
typedef struct _SP_DEVICE_INTERFACE_DETAIL_DATA_W
{
    DWORD cbSize;
    WCHAR DevicePath[1];
} SP_DEVICE_INTERFACE_DETAIL_DATA_W, *PSP_DEVICE_INTERFACE_DETAIL_DATA_W;

/// What a list is about.
typedef struct _SP_DEVINFO_LIST_DETAIL_DATA_W
{
    DWORD cbSize;
    GUID ClassGuid;
    HANDLE RemoteMachineHandle;
    WCHAR RemoteMachineName[SP_MAX_MACHINENAME_LENGTH];
} SP_DEVINFO_LIST_DETAIL_DATA_W, *PSP_DEVINFO_LIST_DETAIL_DATA_W;

typedef struct _SP_CLASSINSTALL_HEADER
{
    DWORD cbSize; ///< of this header
    DI_FUNCTION InstallFunction;
} SP_CLASSINSTALL_HEADER, *PSP_CLASSINSTALL_HEADER;

/// The parameters of DIF_PROPERTYCHANGE.
typedef struct _SP_PROPCHANGE_PARAMS
{
    SP_CLASSINSTALL_HEADER ClassInstallHeader;
    DWORD StateChange; ///< DICS_...
    DWORD Scope;       ///< DICS_FLAG_...
    DWORD HwProfile;   ///< 0 is the current one
} SP_PROPCHANGE_PARAMS, *PSP_PROPCHANGE_PARAMS;

#pragma pack(pop)

static_assert(sizeof(void*) != 4 || sizeof(SP_DEVINFO_DATA) == 28);
static_assert(sizeof(void*) != 4 || sizeof(SP_DEVICE_INTERFACE_DATA) == 28);
static_assert(sizeof(void*) != 4 || sizeof(SP_DEVICE_INTERFACE_DETAIL_DATA_W) == 6);
static_assert(sizeof(void*) != 4 || sizeof(SP_DEVINFO_LIST_DETAIL_DATA_W) == 550);
static_assert(sizeof(SP_CLASSINSTALL_HEADER) == 8);
static_assert(sizeof(SP_PROPCHANGE_PARAMS) == 20);

// Which devices a list takes in.
#define DIGCF_PRESENT 0x00000002
#define DIGCF_DEVICEINTERFACE 0x00000010

#define DIOCR_INSTALLER 0x00000001

#define SPINT_ACTIVE 0x00000001

#define DIF_PROPERTYCHANGE 0x00000012
#define DICS_ENABLE 0x00000001
#define DICS_DISABLE 0x00000002
#define DICS_PROPCHANGE 0x00000003
#define DICS_FLAG_GLOBAL 0x00000001
#define DICS_FLAG_CONFIGSPECIFIC 0x00000002

// Properties of a device.
#define SPDRP_DEVICEDESC 0x00000000
#define SPDRP_FRIENDLYNAME 0x0000000C

// The device installer's own error numbers.
#define ERROR_CLASS_MISMATCH 0xE0000201U
#define ERROR_INVALID_CLASS 0xE0000206U
#define ERROR_INVALID_REG_PROPERTY 0xE0000209U
#define ERROR_NO_SUCH_DEVINST 0xE000020BU
#define ERROR_DI_DO_DEFAULT 0xE000020EU
#define ERROR_NO_CLASSINSTALL_PARAMS 0xE0000215U
#define ERROR_NOT_DISABLEABLE 0xE0000231U

SIM_API HDEVINFO WINAPI SetupDiCreateDeviceInfoList(const GUID* classGuid, HWND parent);
SIM_API HDEVINFO WINAPI SetupDiGetClassDevsW(const GUID* classGuid, PCWSTR enumerator, HWND parent,
                                             DWORD flags);
SIM_API BOOL WINAPI SetupDiDestroyDeviceInfoList(HDEVINFO list);
SIM_API BOOL WINAPI SetupDiEnumDeviceInfo(HDEVINFO list, DWORD index, PSP_DEVINFO_DATA device);
SIM_API BOOL WINAPI SetupDiOpenDeviceInfoW(HDEVINFO list, PCWSTR instanceId, HWND parent, DWORD flags,
                                           PSP_DEVINFO_DATA device);
SIM_API BOOL WINAPI SetupDiGetDeviceInstanceIdW(HDEVINFO list, PSP_DEVINFO_DATA device, PWSTR text,
                                                DWORD capacity, PDWORD required);
SIM_API BOOL WINAPI SetupDiGetDeviceRegistryPropertyW(HDEVINFO list, PSP_DEVINFO_DATA device, DWORD property,
                                                      PDWORD type, PBYTE buffer, DWORD size, PDWORD required);
SIM_API BOOL WINAPI SetupDiGetDeviceInfoListDetailW(HDEVINFO list, PSP_DEVINFO_LIST_DETAIL_DATA_W detail);
SIM_API BOOL WINAPI SetupDiSetClassInstallParamsW(HDEVINFO list, PSP_DEVINFO_DATA device,
                                                  PSP_CLASSINSTALL_HEADER parameters, DWORD size);
SIM_API BOOL WINAPI SetupDiChangeState(HDEVINFO list, PSP_DEVINFO_DATA device);
SIM_API BOOL WINAPI SetupDiCallClassInstaller(DI_FUNCTION function, HDEVINFO list, PSP_DEVINFO_DATA device);
SIM_API BOOL WINAPI SetupDiEnumDeviceInterfaces(HDEVINFO list, PSP_DEVINFO_DATA device,
                                                const GUID* interfaceClass, DWORD index,
                                                PSP_DEVICE_INTERFACE_DATA data);
SIM_API BOOL WINAPI SetupDiGetDeviceInterfaceDetailW(HDEVINFO list, PSP_DEVICE_INTERFACE_DATA data,
                                                     PSP_DEVICE_INTERFACE_DETAIL_DATA_W detail, DWORD size,
                                                     PDWORD required, PSP_DEVINFO_DATA device);
SIM_API HKEY WINAPI SetupDiOpenClassRegKeyExW(const GUID* classGuid, REGSAM access, DWORD flags,
                                              PCWSTR machine, PVOID reserved);
