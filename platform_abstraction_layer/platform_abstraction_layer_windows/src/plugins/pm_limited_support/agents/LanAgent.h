// agents/LanAgent.h
//
// The network adapters as the operating system sees them, found by words in their description: the link
// speed in the registry, the restart that makes it count, and the device state of wired and wireless.
#pragma once

#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

/// `Initialize` comes before anything else. Failures are -1; the log says why. The first matching adapter
/// counts, except for `SetLanSpeed`, which changes all.
class ORVL_API CLanAgent : public CORVLBase
{
public:
    CLanAgent() noexcept;
    CLanAgent(const CLanAgent&) noexcept;
    CLanAgent& operator=(const CLanAgent&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CLanAgent() override;

    /// Fills in the description words. Always 1.
    int Initialize() noexcept;

    /// Stores a speed level from 0 on for the next start of each wired adapter. The level when at least one
    /// took it. An adapter that has the value of the speed name takes any level as it is; one that has only
    /// the standard value takes the number of the level there, and none for a level above 5. For adapters of
    /// the second word, and all after the first of them, the speed name is that of the standard value.
    [[nodiscard]] int SetLanSpeed(int level) noexcept;

    /// The stored speed level of the first wired adapter that has one.
    int GetLanSpeed() noexcept;

    /// Restarts the first wired adapter. 1 when there is one, also when it didn't restart.
    int ApplySettings() noexcept;

    /// 1 enabled, 0 disabled, -1 unknown or failed.
    int GetLANConnectStatus() noexcept;
    int GetWLANConnectStatus() noexcept;

    /// Enables (nonzero) or disables the adapter. 1 when done, -1 when that failed or had nothing to do.
    int SetLANConnectStatus(int enable) noexcept;
    int SetWLANConnectStatus(int enable) noexcept;

    /// Clears the support status and gives 0.
    ULONG CheckSupportStatus() noexcept;

    /// The network has no levels: both give 0.
    int GetEblLevel() noexcept;
    int SetEblLevel(int level) noexcept;

protected:
    ULONG m_nSupportStatus = 0;
    wchar_t m_szLanDesc1[text::kPathCapacity] = {};
    wchar_t m_szLanDesc2[text::kPathCapacity] = {};
    wchar_t m_szWlanDesc1[text::kPathCapacity] = {};
    wchar_t m_szWlanDesc2[text::kPathCapacity] = {};
    wchar_t m_szSpeedValue[text::kPathCapacity] = {};

private:
    bool TakesSpeedFrom(HKEY adapter) noexcept;
    [[nodiscard]] bool StoreSpeed(HKEY adapter, int level) noexcept;
    [[nodiscard]] bool LoadSpeed(HKEY adapter, int& level) noexcept;
};
