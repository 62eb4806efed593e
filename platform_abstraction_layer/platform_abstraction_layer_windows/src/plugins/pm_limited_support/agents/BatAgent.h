// agents/BatAgent.h
//
// The batteries that the operating system exposes, asked through the battery class driver, and the times and
// charges that follow from the system's battery state.
#pragma once

#include "foundation/OrvlBase.h"

#include <poclass.h>

/// How many batteries are opened at most; any others are not seen.
constexpr int kMaxBatteries = 5;

/// `Setup` once, then queries. `index` counts batteries from 0; an index outside 0 to 4 and a battery that
/// couldn't be opened give 0x80070057, a refusal of the battery's driver 0x80004005. Handles are copied
/// with the object, so only one of the copies may close them.
class ORVL_API CBatAgent : public CORVLBase
{
public:
    CBatAgent() noexcept;
    CBatAgent(const CBatAgent&) noexcept;
    CBatAgent& operator=(const CBatAgent&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CBatAgent() override;

    /// Opens the batteries. 0, or 0x80004005 with those that were opened before kept.
    [[nodiscard]] LONG Setup() noexcept;

    /// Closes the batteries; the count stays. Always 0.
    LONG Cleanup() noexcept;

    /// Does nothing. Always 0.
    LONG Reset() noexcept;

    /// The batteries that `Setup` found, those included that couldn't be opened.
    ULONG GetBatteryCount() noexcept;

    [[nodiscard]] LONG GetInfo(int index, _BATTERY_INFORMATION& info) noexcept;
    [[nodiscard]] LONG GetStatus(int index, _BATTERY_STATUS& status) noexcept;
    [[nodiscard]] LONG GetTemperature(int index, ULONG& value) noexcept;
    [[nodiscard]] LONG GetManufactureDate(int index, _BATTERY_MANUFACTURE_DATE& date) noexcept;

    /// Texts, into `size` bytes.
    [[nodiscard]] LONG GetManufactureName(int index, wchar_t* text, int size) noexcept;
    [[nodiscard]] LONG GetUniqueID(int index, wchar_t* text, int size) noexcept;
    [[nodiscard]] LONG GetSerialNumber(int index, wchar_t* text, int size) noexcept;

    /// The system call of that name.
    static int GetSystemPowerStatus(_SYSTEM_POWER_STATUS* status) noexcept;

    // The rest reads the state of the whole system, and only battery 0 stands for it: others give 0.

    /// Seconds until full while charging, the system's estimate while discharging, else -1.
    ULONG GetCompleteTime(int index) noexcept;

    /// Seconds left, or -1.
    ULONG GetRemainingUsageTime(int index) noexcept;

    /// The remaining fraction; above 1.0 when a battery claims more than its capacity.
    float GetRemainBatPer(int index) noexcept;

    /// The remaining capacity in mWh, 0 when the system knows no full capacity.
    ULONG GetRemainCapacity(int index) noexcept;

protected:
    /// Any information level, into `size` bytes.
    [[nodiscard]] LONG QueryBatteryInfo(int index, BATTERY_QUERY_INFORMATION_LEVEL level, void* buffer,
                                        ULONG size) noexcept;

    /// Takes the battery's tag, waiting up to five seconds for a battery to report.
    LONG QueryBatteryTag(int index) noexcept;

    HANDLE m_hBattery[kMaxBatteries]; ///< INVALID_HANDLE_VALUE when not open
    ULONG m_nBatteryTag[kMaxBatteries];
    ULONG m_nBatteryCount;

private:
    bool IsOpen(int index) const noexcept;
    [[nodiscard]] LONG QueryText(int index, BATTERY_QUERY_INFORMATION_LEVEL level, wchar_t* text,
                                 int size) noexcept;
};
