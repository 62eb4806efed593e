// agents/PanelBridge.h
//
// The power interface of the graphics driver's COM object "Pixlink.PanelBridge", called by slot, and the
// records of its policies.
#pragma once

#include <windows.h>

#include <cstddef>

struct PanelBridge;

/// The interface's table. A call has succeeded only if the HRESULT isn't negative and the driver error is 0.
struct PanelBridgeSlots
{
    void* queryInterface;
    void* addRef;
    ULONG(STDMETHODCALLTYPE* release)(PanelBridge* self);
    void* unused[17];
    HRESULT(STDMETHODCALLTYPE* powerApiOpen)(PanelBridge* self, ULONG* handle, ULONG* driverError);
    HRESULT(STDMETHODCALLTYPE* powerApiClose)(PanelBridge* self, ULONG handle, ULONG* driverError);
    HRESULT(STDMETHODCALLTYPE* getPowerConsCaps)
    (PanelBridge* self, ULONG handle, ULONG* capabilities, ULONG* driverError);
    HRESULT(STDMETHODCALLTYPE* getPowerPolicy)
    (PanelBridge* self, ULONG handle, ULONG policy, const GUID* id, ULONG size, void* record,
     ULONG* driverError);
    HRESULT(STDMETHODCALLTYPE* setPowerPolicy)
    (PanelBridge* self, ULONG handle, ULONG policy, const GUID* id, ULONG size, void* record,
     ULONG* driverError);
};
static_assert(offsetof(PanelBridgeSlots, release) == 2 * sizeof(void*));
static_assert(offsetof(PanelBridgeSlots, powerApiOpen) == 20 * sizeof(void*));
static_assert(offsetof(PanelBridgeSlots, setPowerPolicy) == 24 * sizeof(void*));

struct PanelBridge
{
    const PanelBridgeSlots* slots;
};

/// {AFB6489F-4515-44AA-8DF7-ED28EA46283C}
constexpr GUID kPanelBridgeInterface = {
    0xAFB6489F, 0x4515, 0x44AA, {0x8D, 0xF7, 0xED, 0x28, 0xEA, 0x46, 0x28, 0x3C}};

constexpr ULONG kPowerNotSupported = 19;
constexpr ULONG kPowerLocked = 20;
constexpr ULONG kPolicyNotSupported = 24;

struct FrqgRecord
{
    ULONG enabled; ///< offset 0
};
static_assert(sizeof(FrqgRecord) == 4);

struct AbrRecord
{
    ULONG first;       ///< offset 0
    ULONG second;      ///< offset 4
    ULONG reserved[3]; ///< offset 8
};
static_assert(sizeof(AbrRecord) == 20);

struct LumsRecord
{
    ULONG enabled;      ///< offset 0
    ULONG reserved1[2]; ///< offset 4
    ULONG level;        ///< offset 12
    ULONG reserved2;    ///< offset 16
};
static_assert(sizeof(LumsRecord) == 20 && offsetof(LumsRecord, level) == 12);

/// The three records side by side.
struct PolicyRecords
{
    FrqgRecord frqg;
    AbrRecord abr;
    LumsRecord lums;
};
