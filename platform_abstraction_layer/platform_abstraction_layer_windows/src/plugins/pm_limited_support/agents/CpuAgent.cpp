// agents/CpuAgent.cpp
//
// The arithmetic of ratio, voltage and duty, and the registers behind them. All divisions are unsigned and
// truncate.

#include "agents/CpuAgent.h"

#include "agents/DriverCall.h"
#include "agents/OrvlDrvMgr.h"
#include "foundation/Log.h"
#include "foundation/Results.h"

namespace
{

constexpr ULONG kPerformanceStatus = 0x198;
constexpr ULONG kPerformanceControl = 0x199;
constexpr ULONG kClockModulation = 0x19A;
constexpr ULONG kThermalControl = 0x19D;

// A bit field in one half of a register.
struct Field
{
    ULONG MsrRecord::*half;
    int shift;
    ULONG mask;

    constexpr ULONG In(const MsrRecord& record) const noexcept
    {
        return ((record.*half) >> shift) & mask;
    }
};

constexpr Field kCurrentRatio = {&MsrRecord::low, 8, 0xFF};
constexpr Field kLowestRatio = {&MsrRecord::low, 24, 0x1F};
constexpr Field kHighestRatio = {&MsrRecord::high, 8, 0x1F};
constexpr Field kVoltageAtHighest = {&MsrRecord::high, 0, 0x3F};
constexpr Field kVoltageAtLowest = {&MsrRecord::low, 0, 0x3F};
constexpr Field kModulationEnabled = {&MsrRecord::low, 4, 1};
constexpr Field kDuty = {&MsrRecord::low, 1, 7};

// The bits of the performance control register that a change of ratio and voltage leaves alone.
constexpr ULONG kControlKept = 0xFFFFE0C0;

// A full duty cycle counts eight eighths, and is had by switching the modulation off.
constexpr ULONG kFullDuty = 8;
constexpr ULONG kModulationOff = 2;

// How many cores are written at most.
constexpr int kCores = 4;

// The percentage that `duty` eighths of `ratio` are of the top speed.
ULONG Level(ULONG duty, ULONG ratio, ULONG maxRatio) noexcept
{
    return duty * ratio * 100 / (maxRatio * kFullDuty);
}

// Reads a register and logs a failure with `failureText`.
bool Read(ULONG index, MsrRecord& record, const wchar_t* failureText) noexcept
{
    const LONG read = ReadMsrRecord(index, record);
    if (read < 0)
    {
        CORVLBase::DBGOUT(failureText, read);
    }
    return read >= 0;
}

// Writes a register on each of the first cores that the process may run on; ends at the first failure. The
// calling thread stays bound to the last core written.
bool WriteOnCores(const MsrRecord& record) noexcept
{
    const HANDLE thread = GetCurrentThread();
    DWORD_PTR processMask = 0;
    DWORD_PTR systemMask = 0;
    LONG written =
        GetProcessAffinityMask(GetCurrentProcess(), &processMask, &systemMask) ? kSucceeded : kGeneralFailure;
    for (int core = 0; core < kCores && written >= 0; ++core)
    {
        const DWORD_PTR coreMask = DWORD_PTR{1} << core;
        if ((processMask & coreMask) == 0)
        {
            continue;
        }
        SetThreadAffinityMask(thread, coreMask);
        CORVLBase::DBGOUT(L"Begin to write MSR with EAX:%ld on core%ld . \n", record.low, core);
        written = WriteMsrRecord(record);
    }
    if (written < 0)
    {
        CORVLBase::DBGOUT(L"error code of calling DeviceIoControl: 0x%x. \n", written);
    }
    return written >= 0;
}

} // namespace

CCpuAgent::CCpuAgent() noexcept = default;
CCpuAgent::CCpuAgent(const CCpuAgent&) noexcept = default;
CCpuAgent& CCpuAgent::operator=(const CCpuAgent&) noexcept = default;

CCpuAgent::~CCpuAgent()
{
    if (m_bInitialized)
    {
        OrvlDrvClose();
    }
}

ULONG CCpuAgent::GetVersion() noexcept
{
    return kClassVersion;
}

int CCpuAgent::Initialize() noexcept
{
    if (const LONG opened = OrvlDrvOpen(); opened < 0)
    {
        DBGOUT(L"Open connection with driver failed for %d.\n", opened);
        return 0;
    }
    constexpr wchar_t kFailureText[] = L"error code of calling OrvlDrvIoControl: 0x%x. \n";
    MsrRecord performance;
    MsrRecord thermal;
    if (!Read(kPerformanceStatus, performance, kFailureText) || !Read(kThermalControl, thermal, kFailureText))
    {
        OrvlDrvClose();
        return 0;
    }
    m_nMinCBR = kLowestRatio.In(performance);
    m_nMaxCBR = kHighestRatio.In(performance);
    m_nMaxVID = kVoltageAtHighest.In(performance);
    m_nMinVID = kVoltageAtLowest.In(thermal);
    DBGOUT(L"m_nMinCBR%ld,m_nMaxCBR%ld,m_nMinVID%ld,m_nMaxVID%ld\n", m_nMinCBR, m_nMaxCBR, m_nMinVID,
           m_nMaxVID);
    m_bInitialized = true;
    return 1;
}

int CCpuAgent::GetEblLevel() noexcept
{
    if (!m_bInitialized || m_nMaxCBR == 0)
    {
        return -1;
    }
    const int ratio = GetCBR();
    const int duty = ratio == -1 ? -1 : GetModulation();
    return duty > 0 ? static_cast<int>(Level(static_cast<ULONG>(duty), static_cast<ULONG>(ratio), m_nMaxCBR))
                    : -1;
}

int CCpuAgent::SetEblLevel(int level) noexcept
{
    if (level < 1 || level > 100 || !m_bInitialized || m_nMaxCBR == 0)
    {
        return -1;
    }
    const auto wanted = static_cast<ULONG>(level);

    // The lowest ratio that reaches the level by itself, then the lowest duty that reaches it at that ratio.
    ULONG ratio = m_nMinCBR;
    while (ratio <= m_nMaxCBR && ratio * 100 / m_nMaxCBR < wanted)
    {
        ++ratio;
    }
    if (static_cast<int>(ratio) != GetCBR() && SetCBR(static_cast<int>(ratio)) == -1)
    {
        return -1;
    }
    ULONG duty = 1;
    while (duty <= kFullDuty && Level(duty, ratio, m_nMaxCBR) < wanted)
    {
        ++duty;
    }
    if (static_cast<int>(duty) != GetModulation() && SetModulation(static_cast<int>(duty)) == -1)
    {
        return -1;
    }
    return static_cast<int>(Level(duty, ratio, m_nMaxCBR));
}

ULONG CCpuAgent::GetCBRRange() noexcept
{
    return m_bInitialized ? (m_nMaxCBR << 16) | m_nMinCBR : static_cast<ULONG>(-1);
}

int CCpuAgent::CalcVID(int cbr) noexcept
{
    const auto ratio = static_cast<ULONG>(cbr);
    if (ratio < m_nMinCBR || ratio > m_nMaxCBR || m_nMaxCBR == m_nMinCBR)
    {
        return 0;
    }
    const double rise = static_cast<double>(m_nMaxVID) - static_cast<double>(m_nMinVID);
    return static_cast<int>(rise * (ratio - m_nMinCBR) / (m_nMaxCBR - m_nMinCBR) + m_nMinVID);
}

int CCpuAgent::SetCBR(int cbr) noexcept
{
    const auto ratio = static_cast<ULONG>(cbr);
    if (ratio < m_nMinCBR || ratio > m_nMaxCBR)
    {
        DBGOUT(L"Invalid level %ld.\n", cbr);
        return -1;
    }
    const auto voltage = static_cast<ULONG>(CalcVID(cbr));
    MsrRecord control;
    if (!Check(voltage != 0, L"Cannot calucate VID.\n") ||
        !Read(kPerformanceControl, control, L"error code of calling OrvlDrvIoControl: 0x%x. \n"))
    {
        return -1;
    }
    control.index = kPerformanceControl;
    control.low = (control.low & kControlKept) | ((ratio & 0x1F) << 8) | (voltage & 0x3F);
    DBGOUT(L"Begin to write MSR with CBR:%ld, VID:%ld. \n", ratio, voltage);
    return WriteOnCores(control) ? cbr : -1;
}

int CCpuAgent::GetCBR() noexcept
{
    MsrRecord performance;
    if (!Read(kPerformanceStatus, performance, L"error code of calling DeviceIoControl: 0x%x. \n"))
    {
        return -1;
    }
    const ULONG ratio = kCurrentRatio.In(performance);
    DBGOUT(L"bCurrentCBR%ld\n", ratio);
    return static_cast<int>(ratio);
}

int CCpuAgent::GetModulation() noexcept
{
    MsrRecord modulation;
    if (!Read(kClockModulation, modulation, L"error code of calling DeviceIoControl: 0x%x. \n"))
    {
        return -1;
    }
    const ULONG duty = kModulationEnabled.In(modulation) == 0 ? kFullDuty : kDuty.In(modulation);
    DBGOUT(L"bDuty%ld\n", duty);
    return static_cast<int>(duty);
}

int CCpuAgent::SetModulation(int duty) noexcept
{
    if (duty < 1 || duty > static_cast<int>(kFullDuty))
    {
        return -1;
    }
    const auto eighths = static_cast<ULONG>(duty);
    // The enable bit stands right above the duty.
    const ULONG low = eighths == kFullDuty ? kModulationOff : (eighths | 8) << 1;
    return WriteOnCores({kClockModulation, 0, low}) ? duty : -1;
}
