// include/cfgmgr32.h
//
// setupapi: the configuration manager, which knows the tree of devices and the state of each.
#pragma once

#include <windows.h>

using CONFIGRET = DWORD;
using DEVINST = DWORD;
using PDEVINST = DEVINST*;
using DEVINSTID_W = WCHAR*;

#define CR_SUCCESS 0x00000000
#define CR_INVALID_POINTER 0x00000003
#define CR_INVALID_FLAG 0x00000004
#define CR_INVALID_DEVNODE 0x00000005
#define CR_NO_SUCH_DEVNODE 0x0000000D
#define CR_BUFFER_SMALL 0x0000001A
#define CR_NO_SUCH_VALUE 0x00000025
#define CR_INVALID_PROPERTY 0x00000035

// What a device is doing.
#define DN_DRIVER_LOADED 0x00000002
#define DN_STARTED 0x00000008
#define DN_HAS_PROBLEM 0x00000400
#define DN_DISABLEABLE 0x00002000
#define DN_NT_ENUMERATOR 0x00800000
#define DN_NT_DRIVER 0x01000000

// Why a device isn't started.
#define CM_PROB_DISABLED 0x00000016
#define CM_PROB_HARDWARE_DISABLED 0x0000001D

// Properties of a device, one above those of the device installer.
#define CM_DRP_DEVICEDESC 0x00000001

#define CM_LOCATE_DEVNODE_NORMAL 0x00000000

SIM_API CONFIGRET WINAPI CM_Locate_DevNodeW(PDEVINST device, DEVINSTID_W instanceId, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_Child(PDEVINST child, DEVINST device, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_Sibling(PDEVINST sibling, DEVINST device, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_Parent(PDEVINST parent, DEVINST device, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_Device_ID_Size(PULONG length, DEVINST device, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_Device_IDW(DEVINST device, LPWSTR text, ULONG capacity, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_DevNode_Registry_PropertyW(DEVINST device, ULONG property, PULONG type,
                                                           PVOID buffer, PULONG size, ULONG flags);
SIM_API CONFIGRET WINAPI CM_Get_DevNode_Status(PULONG status, PULONG problem, DEVINST device, ULONG flags);
