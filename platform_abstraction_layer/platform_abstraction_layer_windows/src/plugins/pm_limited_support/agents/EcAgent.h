// agents/EcAgent.h
//
// What the embedded controller owns: backlight, radios, LAN port, display mode and the extended battery
// data, all through firmware control methods. Leaves the operating system's adapters to CLanAgent.
#pragma once

#include "foundation/OrvlBase.h"

/// The firmware's extended battery record, 16 bytes, numbered as the record orders them.
struct _BATTERY_EXTEND_FIELDS
{
    ULONG field[4]; ///< offset 0
};
static_assert(sizeof(_BATTERY_EXTEND_FIELDS) == 16);

/// The selector of the battery record that everybody here asks for.
constexpr ULONG kExtendedBatteryRecord = 15;

/// An object serves one piece of work: `Setup`, a few operations, `Cleanup` or destruction. The `int`
/// operations give what the firmware answered, or -1 on any failure; 1 is on for a status. Before `Setup`
/// every method is refused with 0x80070006, or -1.
class ORVL_API CEcAgent : public CORVLBase
{
public:
    CEcAgent() noexcept;
    CEcAgent(const CEcAgent&) noexcept;
    CEcAgent& operator=(const CEcAgent&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CEcAgent() override;

    /// Opens the channel. 0, 1 when that was done before, or the translated error.
    [[nodiscard]] LONG Setup() noexcept;

    /// Closes the channel by the channel's rule. Always 0.
    LONG Cleanup() noexcept;

    /// Evaluates any control method with one result word.
    [[nodiscard]] LONG ToExecCtrlMethod(ULONG method, ULONG* result, ULONG arg1, ULONG arg2,
                                        ULONG arg3) noexcept;

    int GetMaxLevels() noexcept;
    int GetMinLevel() noexcept;

    int GetBacklightLevel() noexcept;

    /// A negative level gives -1; one above the highest is sent as the highest.
    int SetBacklightLevel(int level) noexcept;

    int GetWifiStatus() noexcept;

    /// Switches the radio; on 1 the wireless adapter is enabled too, after the second that the radio needs
    /// to appear. Blocks the caller for that second.
    int SetWifiStatus(int status) noexcept;

    int GetLANStatus() noexcept;

    /// Switches the LAN port; on 1 the wired adapter is enabled too.
    int SetLANStatus(int status) noexcept;

    int Get3GStatus() noexcept;
    int Set3GStatus(int status) noexcept;
    int GetBluetoothStatus() noexcept;
    int SetBluetoothStatus(int status) noexcept;
    int GetCurrentDisplayMode() noexcept;
    int SwitchDisplayMode() noexcept;

    /// The firmware's debug method; the argument isn't used.
    int SelfTest(int unused) noexcept;

    /// The firmware's status word.
    [[nodiscard]] LONG GetStatus(ULONG* status) noexcept;

    /// Reads one numbered item. 0x80070057 for a null pointer.
    [[nodiscard]] LONG GeneralRead(ULONG item, ULONG* value) noexcept;

    /// Writes one numbered item. 0x80070057 for a null pointer.
    [[nodiscard]] LONG GeneralWrite(ULONG item, ULONG value, ULONG* result) noexcept;

    /// The extended battery record that `selector` names; 0x80070057 for a null pointer.
    [[nodiscard]] LONG GetBatteryExtends(_BATTERY_EXTEND_FIELDS* fields, ULONG selector) noexcept;

    /// Not offered by the firmware: always 0x80004005, and nothing is called.
    int GetAudioJackin() noexcept;
    int GetBatteryTemp() noexcept;
    int GetHotkeyIndex() noexcept;

protected:
    /// Fills in the item numbers and levels. Always 0.
    LONG GetCfgSettings() noexcept;

    bool m_bDriverSetUp{};
    ULONG m_nBacklightReadItem{};
    ULONG m_nBacklightWriteItem{};
    ULONG m_nWifiReadItem{};
    ULONG m_nWifiWriteItem{};
    ULONG m_nLANReadItem{};
    ULONG m_nLANWriteItem{};
    ULONG m_n3GReadItem{};
    ULONG m_n3GWriteItem{};
    LONG m_nMaxLevel{};
    LONG m_nMinLevel{};
    ULONG m_nDisplayModeItem{};
    ULONG m_nBluetoothReadItem{};
    ULONG m_nBluetoothWriteItem{};

private:
    int ReadItem(ULONG item) noexcept;
    [[nodiscard]] int WriteItem(ULONG item, int value) noexcept;
};
