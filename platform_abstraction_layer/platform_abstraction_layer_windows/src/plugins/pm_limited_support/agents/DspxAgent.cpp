// agents/DspxAgent.cpp
//
// Packs the three policies of the graphics driver into the level word and back.

#include "agents/DspxAgent.h"

#include "agents/PanelBridge.h"
#include "foundation/Log.h"
#include "foundation/Results.h"

#include <objbase.h>

#include <cstring>

namespace
{

// One policy: how the driver knows it, where its record lies among the three, and what is logged.
struct Policy
{
    ULONG number;
    GUID id;
    ULONG recordSize;
    std::size_t recordOffset;
    const wchar_t* getFailed;
    const wchar_t* setFailed;
    const wchar_t* unsupported;

    void* RecordIn(PolicyRecords& records) const noexcept
    {
        return reinterpret_cast<BYTE*>(&records) + recordOffset;
    }
};

// In the order in which they are always handled.
constexpr Policy kPolicies[] = {
    {1,
     {0x8A2A926D, 0xFF9D, 0x4737, {0x93, 0x5B, 0x96, 0xBF, 0x28, 0x80, 0x5B, 0x73}},
     sizeof(FrqgRecord),
     offsetof(PolicyRecords, frqg),
     L"GetPowerPolicy for FRQG failed",
     L"SetPowerPolicy for FRQG failed",
     L"Unsupported power policy FRQG!"},
    {3,
     {0x2B3C5F6C, 0x97B7, 0x4C85, {0xB4, 0xF2, 0x33, 0x57, 0x19, 0xD2, 0x4F, 0x3D}},
     sizeof(AbrRecord),
     offsetof(PolicyRecords, abr),
     L"GetPowerPolicy for ABR failed",
     L"SetPowerPolicy for ABR failed",
     L"Unsupported power policy ABR!"},
    {2,
     {0x6D24D96F, 0x019C, 0x4BAA, {0xAC, 0xD5, 0xD4, 0x8B, 0x78, 0x05, 0x03, 0x25}},
     sizeof(LumsRecord),
     offsetof(PolicyRecords, lums),
     L"GetPowerPolicy for LUMS failed",
     L"SetPowerPolicy for LUMS failed",
     L"Unsupported power policy LUMS!"},
};

constexpr ULONG kFrqgBit = 0x40000000;
constexpr ULONG kAbrSecondBit = 0x20000000;
constexpr ULONG kAbrFirstBit = 0x10000000;
constexpr ULONG kLumsBit = 0x04000000;
constexpr ULONG kLumsLevelMask = 0x000FFFFF;

// What an answer of `PowerApiOpen` with that driver error means.
struct OpenRefusal
{
    ULONG driverError;
    const wchar_t* text;
    LONG result;
};

constexpr OpenRefusal kOpenRefusals[] = {
    {kPowerNotSupported, L"PowerAPI Not Supported.%d", kNotSupported},
    {kPowerLocked, L"PowerAPI Locked.%d", kAccessRefused},
};
constexpr OpenRefusal kOtherRefusal = {0, L"PowerApiOpen() failed.%d", kGeneralFailure};

ULONG LevelWord(const PolicyRecords& records) noexcept
{
    ULONG word = 0;
    word |= records.frqg.enabled != 0 ? kFrqgBit : 0;
    word |= records.abr.second != 0 ? kAbrSecondBit : 0;
    word |= records.abr.first != 0 ? kAbrFirstBit : 0;
    word |= records.lums.enabled != 0 ? kLumsBit | (records.lums.level & kLumsLevelMask) : 0;
    return word;
}

PolicyRecords RecordsOf(ULONG word) noexcept
{
    const auto isSet = [word](ULONG bit) -> ULONG { return (word & bit) != 0 ? 1 : 0; };
    PolicyRecords records = {};
    records.frqg.enabled = isSet(kFrqgBit);
    records.abr.first = isSet(kAbrFirstBit);
    records.abr.second = isSet(kAbrSecondBit);
    records.lums.enabled = isSet(kLumsBit);
    records.lums.level = word & kLumsLevelMask;
    return records;
}

bool HasSucceeded(HRESULT result, ULONG driverError) noexcept
{
    return result >= 0 && driverError == 0;
}

using PolicySlot = decltype(PanelBridgeSlots::getPowerPolicy) PanelBridgeSlots::*;

// Has the driver read or write the record of each policy, by `slot`. A policy that it doesn't have is passed
// over with its record zeroed. False, with the policy's text `failed` in the log, at the first failure.
bool TransferPolicies(PanelBridge* bridge, ULONG powerHandle, PolicySlot slot, const wchar_t* Policy::*failed,
                      PolicyRecords& records) noexcept
{
    for (const Policy& policy : kPolicies)
    {
        ULONG driverError = 0;
        const HRESULT result =
            (bridge->slots->*slot)(bridge, powerHandle, policy.number, &policy.id, policy.recordSize,
                                   policy.RecordIn(records), &driverError);
        if (driverError == kPolicyNotSupported)
        {
            CORVLBase::DBGOUT(policy.unsupported);
            std::memset(policy.RecordIn(records), 0, policy.recordSize);
        }
        else if (!HasSucceeded(result, driverError))
        {
            CORVLBase::DBGOUT(policy.*failed);
            return false;
        }
    }
    return true;
}

bool InitializeCom() noexcept
{
    return SUCCEEDED(CoInitializeEx(nullptr, COINIT_MULTITHREADED));
}

} // namespace

CDspxAgent::CDspxAgent() noexcept
    : m_pInterface(nullptr), m_nPowerHandle(0), m_bComInitialized(InitializeCom())
{
}

CDspxAgent::CDspxAgent(const CDspxAgent& other) noexcept
    : CORVLBase(other), m_pInterface(other.m_pInterface), m_nPowerHandle(other.m_nPowerHandle),
      m_bComInitialized(InitializeCom())
{
}

CDspxAgent& CDspxAgent::operator=(const CDspxAgent& other) noexcept
{
    // Each object has its own share of COM, so that flag stays.
    if (this != &other)
    {
        m_pInterface = other.m_pInterface;
        m_nPowerHandle = other.m_nPowerHandle;
    }
    return *this;
}

CDspxAgent::~CDspxAgent()
{
    Cleanup();
    if (m_bComInitialized)
    {
        CoUninitialize();
    }
}

ULONG CDspxAgent::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CDspxAgent::Setup() noexcept
{
    CLSID classId = {};
    if (const HRESULT known = CLSIDFromProgID(L"Pixlink.PanelBridge", &classId); FAILED(known))
    {
        DBGOUT(L"COM not init or PXLK driver not installed [%x].", known);
        return known;
    }
    void* created = nullptr;
    const HRESULT result =
        CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER | CLSCTX_LOCAL_SERVER | CLSCTX_REMOTE_SERVER,
                         kPanelBridgeInterface, &created);
    m_pInterface = FAILED(result) ? nullptr : static_cast<PanelBridge*>(created);
    if (m_pInterface == nullptr)
    {
        DBGOUT(L"CoCreateInstance() Failed for %x", result);
        return result;
    }

    ULONG driverError = 0;
    const HRESULT opened = m_pInterface->slots->powerApiOpen(m_pInterface, &m_nPowerHandle, &driverError);
    if (HasSucceeded(opened, driverError))
    {
        return opened;
    }
    ReleaseInterface();
    const OpenRefusal* refusal = &kOtherRefusal;
    for (const OpenRefusal& row : kOpenRefusals)
    {
        refusal = row.driverError == driverError ? &row : refusal;
    }
    DBGOUT(refusal->text, driverError);
    return refusal->result;
}

LONG CDspxAgent::Cleanup() noexcept
{
    if (m_pInterface == nullptr)
    {
        return kSucceeded;
    }
    ULONG driverError = 0;
    const HRESULT closed = m_pInterface->slots->powerApiClose(m_pInterface, m_nPowerHandle, &driverError);
    if (!HasSucceeded(closed, driverError))
    {
        DBGOUT(L"Close Power handle failed with %x", closed);
    }
    ReleaseInterface();
    return kSucceeded;
}

void CDspxAgent::ReleaseInterface() noexcept
{
    m_pInterface->slots->release(m_pInterface);
    m_pInterface = nullptr;
}

ULONG CDspxAgent::CheckSupportStatus() noexcept
{
    if (m_pInterface == nullptr)
    {
        return 0;
    }
    ULONG capabilities = 0;
    ULONG driverError = 0;
    const HRESULT result =
        m_pInterface->slots->getPowerConsCaps(m_pInterface, m_nPowerHandle, &capabilities, &driverError);
    if (!HasSucceeded(result, driverError))
    {
        DBGOUT(L"GetPowerConsCaps failed with %x", result);
        return 0;
    }
    return capabilities;
}

int CDspxAgent::GetEblLevel() noexcept
{
    PolicyRecords records = {};
    const bool isRead = Check(m_pInterface != nullptr, L"call setup first.") &&
                        TransferPolicies(m_pInterface, m_nPowerHandle, &PanelBridgeSlots::getPowerPolicy,
                                         &Policy::getFailed, records);
    return isRead ? static_cast<int>(LevelWord(records)) : -1;
}

int CDspxAgent::SetEblLevel(int level) noexcept
{
    PolicyRecords records = RecordsOf(static_cast<ULONG>(level));
    const bool isWritten = Check(m_pInterface != nullptr, L"call setup first.") &&
                           Check(level != -1, L"Wrong level!") &&
                           TransferPolicies(m_pInterface, m_nPowerHandle, &PanelBridgeSlots::setPowerPolicy,
                                            &Policy::setFailed, records);
    return isWritten ? level : -1;
}
