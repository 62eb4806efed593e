// scheme/SchemeEx.h
//
// The engine behind every scheme command: what a scheme holds, who owns it, which one is active. A scheme
// is one small number, the scheme index, and everything that hangs on it in the operating system's power
// manager and in the configuration files. The engine stores; it touches no device when it writes or applies
// a scheme. The queries of batteries and of device state at the end are fronts of the agents.
//
// There are two ways to the power manager. On the XP path, `m_bVista` 0, the index is the operating
// system's own scheme number. On the Vista path, `m_bVista` 1, it is a row of the scheme values file, and
// the row holds the scheme's GUID.
#pragma once

#include "foundation/OrvlBase.h"
#include "foundation/PowerProfile.h"
#include "foundation/Text.h"
#include "scheme/PwrSet.h"

#include <poclass.h>

/// What `CSchemeEx::EnumPwrSchemes` calls for each scheme: number, size of the name, name, size of the
/// description, description, the caller's argument. 0 ends the walk. The texts end with the call.
using PwrSchemeCallback = unsigned char(CALLBACK*)(unsigned int, ULONG, wchar_t*, ULONG, wchar_t*, LONG);

/// Build the object, `Initialize`, fill the three strings, then operate. Nothing is cached: each operation
/// goes back to the operating system and the files. `ifAC` picks the value for AC power (nonzero) or
/// battery power (0). Failures are results, their detail is logged; nothing is rolled back.
class ORVL_API CSchemeEx : public CORVLBase
{
public:
    /// On the XP path, with empty strings.
    CSchemeEx() noexcept;
    CSchemeEx(const CSchemeEx&) noexcept;
    CSchemeEx& operator=(const CSchemeEx&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CSchemeEx() override;

    /// Chooses the path: Vista on a system of major version 6 exactly, whose power functions are bound by
    /// this call. Where the version or the library can't be had, `m_bVista` stays as it was.
    void Initialize() noexcept;

    /// Does nothing. Always 1.
    int InitCfgFile() noexcept;

    /// Fills the three strings, each cut at 259 characters. Always 1.
    int SetSubKeyProfilePath(const wchar_t* userId, const wchar_t* subKey,
                             const wchar_t* profilePath) noexcept;

    // The setting catalogue, on both paths. -1 when a file can't be opened. A text has at most 254
    // characters; `buffer` is left alone where there is none.

    /// How many options the variable offers, or -1.
    int GetPwrVariableOptCount(const wchar_t* name) noexcept;

    /// The value of one option, counted from 0, or -1. The number isn't checked against the count.
    int GetPwrVariableOptValue(const wchar_t* name, int option) noexcept;

    /// The text of one option into `buffer` of `size` characters. Its length; -1 for an option that isn't
    /// below the count and for an empty text.
    [[nodiscard]] int GetPwrVariableOptDesc(const wchar_t* name, int option, wchar_t* buffer,
                                            int size) noexcept;

    /// The unit's text into `buffer` of `size` characters. Its length; -1 for an empty text.
    [[nodiscard]] int GetPwrVariableUnit(const wchar_t* name, wchar_t* buffer, int size) noexcept;

    /// The display name into `buffer` of `size` characters. 0; -1 for a name outside the table and for an
    /// empty text. 0 with `buffer` left alone for the USB ports, which have no display name.
    [[nodiscard]] int GetPwrVariableName(const wchar_t* name, wchar_t* buffer, int size) noexcept;

    // Reading.

    /// The value of one variable, or -1. The first read of a variable that lies in the scheme values file
    /// creates its key.
    int GetPwrVariable(int index, int ifAC, const wchar_t* name) noexcept;

    /// There are no variables with texts. Always 0.
    int GetPwrVariable(int index, int ifAC, const wchar_t* name, wchar_t* buffer, int size) noexcept;

    /// Fills `set` but for `name`, `desc` and `dc.lums`; -1 in a field that couldn't be read. Always 1.
    int GetPwrVariableAll(PWRSET& set, int index) noexcept;

    /// The active scheme's index, or -1. The argument isn't used. On the Vista path a scheme that no row
    /// names gets the next row.
    int GetActivePwrScheme(int ignored) noexcept;

    /// The hibernate time in seconds that `policy` implies for the power source, 0 for never.
    int GetHibernateTimeOutFromUserPowerPolicy(bool ifAC, POWER_POLICY& policy) noexcept;

    /// 1 on AC power, 0 on battery and where the system doesn't know.
    int GetIfAC() noexcept;

    // Writing.

    /// Stores one value after a look into the catalogue. Success is 1 for what the operating system keeps
    /// alone, the stored number for all else; on the Vista path that number is a percentage for the
    /// backlight. -1 on failure; -2 on the XP path when standby and hibernate times can't be reconciled.
    int SetPwrVariable(int index, int ifAC, const wchar_t* name, int value) noexcept;

    /// There are no variables with texts. Always 0.
    int SetPwrVariable(int index, int ifAC, const wchar_t* name, const wchar_t* value) noexcept;

    /// Writes a whole scheme but for its name and description. A value that is refused leaves its variable
    /// as it was. Always `set.schemeID`.
    int SetPwrVariable(PWRSET& set) noexcept;

    /// Writes the three display attributes into the user's scheme display file. Always 1.
    int SetPwrCfgVariable(PWRSET& set) noexcept;

    // Finding schemes, and the operating system's stores.

protected:
    /// 1 when the scheme exists, else 0.
    int FindPwrScheme(int index) noexcept;

public:
    /// The operating system's scheme of that name, case-sensitive, or -1; always -1 on the Vista path.
    int FindPwrScheme(const wchar_t* name) noexcept;

    /// The scheme of that name in the section `m_szSubKey` of the user scheme file, case-sensitive, or
    /// -1. `userId` isn't used.
    int FindPwrScheme(const wchar_t* name, const wchar_t* userId) noexcept;

    /// 1 and the GUID of a row, or 0. A row whose scheme the operating system no longer knows is removed
    /// with all that it holds.
    [[nodiscard]] int SchemeIndexToGuid(int index, GUID* guid) noexcept;

    /// The row that holds `guid`, or -1. A GUID text that doesn't parse ends the search.
    int SchemeGuidToIndex(const GUID* guid) noexcept;

    /// On the XP path the highest scheme number in use, 0 for none; on the Vista path the next free row,
    /// or -1.
    int GetPwrSchemeMaxIndex() noexcept;

    /// The active scheme's number in the key `subKey` below HKEY_USERS, 0 when it can't be read.
    int ReadUserActivePowerScheme(const wchar_t* subKey) noexcept;

    /// The user part of a scheme from the key `subKey` below HKEY_USERS into `*size` bytes. 1 or 0.
    [[nodiscard]] int ReadUserPowerPolicy(int index, const wchar_t* subKey, unsigned char* data,
                                          ULONG* size) noexcept;

    /// The machine part of a scheme into `*size` bytes. 1 or 0.
    [[nodiscard]] int ReadMachinePowerPolicy(int index, unsigned char* data, ULONG* size) noexcept;

    // Applying.

    /// Makes the scheme the active one, records it and tells the service. The index of the scheme that was
    /// active before, or -1; when the service alone fails, the scheme is active all the same.
    int SetActivePwrScheme(int nIndex) noexcept;

    /// The same for a user: takes over the user's own disk, hibernate and button policies first and records
    /// the choice. `user` isn't read; the user is the one of `m_szSubKey`.
    int SetActivePwrScheme(int nIndex, const wchar_t* user) noexcept;

    /// Copies the disk and hibernate times of the user's own active scheme into scheme `nIndex` and
    /// installs the user's global policy for the account of this process.
    void SetGolbalPwrPolicyFromCurrentUser(int nIndex) noexcept;

    // Adding and renaming; on the XP path alone.

    /// Copies scheme `from` under a new name. The new scheme's number; -1 on failure, -2 when the user has
    /// a scheme of that name. A name has at most 29 characters, blanks at its ends not counted.
    [[nodiscard]] int AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from,
                                   const wchar_t* user) noexcept;

    /// The same without an owner; -2 when the operating system has a scheme of that name.
    [[nodiscard]] int AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from) noexcept;

    /// The same for a whole scheme: copies scheme `set.schemeID`, writes the values of `set` into the new
    /// scheme and stores its number in `set.schemeID`.
    [[nodiscard]] int AddPwrScheme(PWRSET& set, const wchar_t* user) noexcept;

    /// Enters the user of `m_szSubKey` in the list of users unless the user is listed already. 1, or -1 when
    /// the file can't be opened or has too many entries. `user` is logged.
    int AddtoUserList(const wchar_t* user) noexcept;

    /// Enters a scheme as the user's last. 1, or -1 when the file can't be opened or has too many entries,
    /// and for a name with a line break.
    int AddtoUserScheme(const wchar_t* name, const wchar_t* user, int number) noexcept;

    /// Renames a scheme in the operating system; the user scheme file keeps the old name. `index` or -1.
    [[nodiscard]] int SetPwrSchemeNameDesc(int index, const wchar_t* name, const wchar_t* desc) noexcept;

    // Deleting and enumerating.

    /// Deletes a scheme with its stored variables. 1, or 0 for the standard schemes and on failure.
    int DeletePwrScheme(int index) noexcept;

    /// The same, and takes the scheme out of the section `m_szSubKey` of the user scheme file. 0 also for a
    /// scheme that belongs to another listed user alone. `user` isn't read.
    int DeletePwrScheme(int index, const wchar_t* user) noexcept;

    /// Walks the operating system's schemes. Nonzero when the walk took place; 0 on the Vista path and for
    /// a null callback.
    int EnumPwrSchemes(PwrSchemeCallback callback, LONG argument) noexcept;

    /// Name and description of a scheme; the lengths are the buffers' capacities in characters and don't
    /// change. A null buffer is skipped. Nonzero, or 0 when the scheme isn't there and on the Vista path.
    [[nodiscard]] int GetPwrSchemeNameDesc(int index, wchar_t* name, ULONG* nameLen, wchar_t* desc,
                                           ULONG* descLen) noexcept;

    // Clearing; best effort.

    /// 1 clears for the user of `m_szSubKey`, 0 for all; other numbers do nothing. Always 1.
    int ClearORV(int what) noexcept;

    /// The user's schemes, section and files. 1, or -1 when the user scheme file
    /// can't be opened.
    int ClearCurrentUserSettings() noexcept;

    /// The schemes of all listed users, the machine's files and its key. 1; 0 when the folder or the
    /// registry failed; -1 when the user scheme file can't be opened.
    int ClearPwrSchemes() noexcept;

    /// What lies in the profile and the hive of each account. Always 0.
    int ClearCfgSettings() noexcept;

    /// Removes the key from the hive file of the account `sid`, loaded for the purpose. 1 when the hive
    /// could be unloaded at the end, else 0.
    int ClearUserRegSettings(const wchar_t* hive, const wchar_t* sid) noexcept;

    /// Lets this process load hives. 1 when both privileges are enabled, else 0.
    int EnableRestoreBackupPrivilege() noexcept;

    // The companion application's start with Windows. No field is used.

    /// Changes the "Run" key: 1 enters `path` (`size` characters), 0 removes it. 1 or 0.
    [[nodiscard]] int WriteAutoRunSettings(int flag, const wchar_t* path, ULONG size) noexcept;

    /// The same, and records the flag in registry and configuration. 1 or 0.
    [[nodiscard]] int SetAutoRunORVA(int flag, const wchar_t* path, ULONG size) noexcept;

    // The processor in the active scheme, on the present power source.

    /// Percent of full speed, 0 for adaptive, or -1.
    int GetCPUSpeed() noexcept;

    /// Writes the speed and applies the scheme anew. The speed before, or -1 when there was none to read;
    /// the result of the write isn't reported.
    int SetCPUSpeed(int speed) noexcept;

    // Batteries, each query with an agent of its own. See CBatAgent for the answers.

    /// 0 when there is none or the system doesn't know.
    ULONG GetBatteryCount() noexcept;

    /// 0 or -1.
    int GetBatteryStatus(int index, _BATTERY_STATUS& status) noexcept;

    /// The system call of that name.
    int GetSystemPowerStatus(_SYSTEM_POWER_STATUS* status) noexcept;

    /// Seconds, -1 when unknown; 0 when the batteries can't be opened.
    ULONG GetCompleteTime(int index) noexcept;
    ULONG GetRemainingUsageTime(int index) noexcept;

    /// The agent's result; 0 with `info` untouched when the batteries can't be opened.
    LONG GetBatteryInfo(int index, _BATTERY_INFORMATION& info) noexcept;

    /// The remaining fraction, at most 1.0.
    float GetRemainBatPer(int index) noexcept;
    ULONG GetRemainCapacity(int index) noexcept;

    /// One item of the firmware's or the operating system's battery record by the name that the
    /// configuration gives it, copied to `value` in the configured size: room for 4 bytes serves a plain
    /// number, 36 bytes serve every item. 0, also for an unknown name with `value` untouched, or -1.
    [[nodiscard]] int GetBatteryInformation(int index, wchar_t const* name, ULONG* value) noexcept;

    // Live device state by a variable's name.

    /// A radio: 1 in `status` for on; the result is the firmware's value or -1. A chipset function: 1 in
    /// `status` for disabled; 0 or -1. Other variables: 0, nothing done; -1 for an unknown name.
    [[nodiscard]] int GetDeviceStatus(wchar_t const* name, int* status) noexcept;

    /// A radio: the firmware's answer or -1. A chipset function, disabled by a nonzero value: 0 or -1.
    /// Other variables: 0, nothing done; -1 for an unknown name.
    int SetDeviceStatus(wchar_t const* name, int value) noexcept;

    LONG m_bVista = 0;                         ///< 1 on the Vista path, else 0; set only by `Initialize`
    wchar_t m_szUserId[text::kPathCapacity]{}; ///< the requesting user's account name
    wchar_t m_szSubKey[text::kPathCapacity]{}; ///< the user's key below HKEY_USERS and section in the files
    wchar_t m_szProfilePath[text::kPathCapacity]{}; ///< the user's configuration folder

protected:
    /// The variable's number, or -1. The case of the letters A to Z plays no part.
    int ParseVarName(const wchar_t* name) noexcept;

    /// On the Vista path the variable's number, or -1; fills both GUIDs for a variable that the operating
    /// system keeps, numbers 0 to 6 and 8, and gives -1 when the catalogue lacks one of them.
    int ParseVarName(const wchar_t* name, GUID* subGroup, GUID* setting) noexcept;

    /// Turns a GUID text in braces into `guid`; nonzero on success.
    [[nodiscard]] int GuidFromString(const wchar_t* text, GUID* guid) noexcept;

    /// The text form of `guid` with a leading blank, into `*size` characters. 1, or 0; a `*size` that is
    /// too small is raised to what is wanted.
    [[nodiscard]] int GuidIntoString(GUID* guid, wchar_t* buffer, ULONG* size) noexcept;

    /// 1 when `value` is acceptable for the variable, else 0.
    int ValidateData(const wchar_t* name, int value) noexcept;

    /// The first hibernate time of the catalogue above a standby time, 0 when there is none or the machine
    /// doesn't hibernate.
    int GetHiberTimeFromStandbyTime(int standby) noexcept;
};
