// modules/powrprof/PowerStoreDefaults.cpp
//
// The standard schemes as tables.

#include "PowerStoreDefaults.h"

#include "PowerStoreSchemes.h"
#include "PowerStoreSettings.h"
#include "PowerStoreText.h"

#include <algorithm>
#include <iterator>

namespace power_store
{

namespace
{

constexpr DWORD kMinute = 60;
constexpr DWORD kHour = 60 * kMinute;
constexpr UINT kNotebookScheme = 1;

// One power source of an index-based scheme; times in seconds, 0 for never. Hibernation counts from the
// beginning of standby.
struct SourceDefaults
{
    DWORD videoOff;
    DWORD diskOff;
    DWORD standby;
    DWORD hibernateAfterStandby;
    BYTE throttle;
};

struct SchemeDefaults
{
    const wchar_t* name;
    const wchar_t* description;
    SourceDefaults mains;
    SourceDefaults battery;
};

constexpr SchemeDefaults kSchemes[] = {
    {L"Home/Office Desk",
     L"This scheme is suited to most home or desktop computers that are left plugged in all the time.",
     {20 * kMinute, 0, 0, 0, PO_THROTTLE_NONE},
     {5 * kMinute, 10 * kMinute, 5 * kMinute, 15 * kMinute, PO_THROTTLE_ADAPTIVE}},
    {L"Portable/Laptop",
     L"This scheme is designed for extended battery life for portable computers on the road.",
     {15 * kMinute, 30 * kMinute, 20 * kMinute, 2 * kHour + 40 * kMinute, PO_THROTTLE_ADAPTIVE},
     {5 * kMinute, 5 * kMinute, 5 * kMinute, 10 * kMinute, PO_THROTTLE_ADAPTIVE}},
    {L"Presentation",
     L"This scheme keeps the monitor on for doing presentations.",
     {0, 0, 0, 0, PO_THROTTLE_ADAPTIVE},
     {0, 5 * kMinute, 15 * kMinute, kHour + 45 * kMinute, PO_THROTTLE_DEGRADE}},
    {L"Always On",
     L"This scheme keeps the computer running so that it can be accessed from the network.  Use this scheme "
     L"if you do not have network wakeup hardware.",
     {20 * kMinute, 0, 0, 0, PO_THROTTLE_NONE},
     {15 * kMinute, 30 * kMinute, 0, 0, PO_THROTTLE_NONE}},
    {L"Minimal Power Management",
     L"This scheme keeps the computer on and optimizes it for high performance.",
     {15 * kMinute, 0, 0, 0, PO_THROTTLE_ADAPTIVE},
     {5 * kMinute, 15 * kMinute, 5 * kMinute, 2 * kHour + 55 * kMinute, PO_THROTTLE_ADAPTIVE}},
    {L"Max Battery",
     L"This scheme is extremely aggressive for saving power.",
     {15 * kMinute, 0, 20 * kMinute, 25 * kMinute, PO_THROTTLE_ADAPTIVE},
     {kMinute, 3 * kMinute, 2 * kMinute, 58 * kMinute, PO_THROTTLE_DEGRADE}},
};

constexpr BYTE kFullPercent = 100;
constexpr BYTE kHalfPercent = 50;

USER_POWER_POLICY UserPolicy(const SchemeDefaults& scheme) noexcept
{
    USER_POWER_POLICY policy{};
    policy.Revision = 1;
    policy.IdleAc = {PowerActionSleep, POWER_ACTION_QUERY_ALLOWED, 0};
    policy.IdleDc = policy.IdleAc;
    policy.IdleTimeoutAc = scheme.mains.standby;
    policy.IdleTimeoutDc = scheme.battery.standby;
    policy.IdleSensitivityAc = kHalfPercent;
    policy.IdleSensitivityDc = kHalfPercent;
    policy.ThrottlePolicyAc = scheme.mains.throttle;
    policy.ThrottlePolicyDc = scheme.battery.throttle;
    policy.MaxSleepAc = PowerSystemSleeping3;
    policy.MaxSleepDc = PowerSystemSleeping3;
    policy.VideoTimeoutAc = scheme.mains.videoOff;
    policy.VideoTimeoutDc = scheme.battery.videoOff;
    policy.SpindownTimeoutAc = scheme.mains.diskOff;
    policy.SpindownTimeoutDc = scheme.battery.diskOff;
    policy.OptimizeForPowerAc = TRUE;
    policy.OptimizeForPowerDc = TRUE;
    policy.FanThrottleToleranceAc = kFullPercent;
    policy.FanThrottleToleranceDc = kFullPercent;
    policy.ForcedThrottleAc = kFullPercent;
    policy.ForcedThrottleDc = kFullPercent;
    return policy;
}

MACHINE_POWER_POLICY MachinePolicy(const SchemeDefaults& scheme) noexcept
{
    MACHINE_POWER_POLICY policy{};
    policy.Revision = 1;
    policy.MinSleepAc = PowerSystemSleeping1;
    policy.MinSleepDc = PowerSystemSleeping1;
    policy.ReducedLatencySleepAc = PowerSystemSleeping1;
    policy.ReducedLatencySleepDc = PowerSystemSleeping1;
    policy.DozeS4TimeoutAc = scheme.mains.hibernateAfterStandby;
    policy.DozeS4TimeoutDc = scheme.battery.hibernateAfterStandby;
    policy.MinThrottleAc = kHalfPercent;
    policy.MinThrottleDc = kHalfPercent;
    return policy;
}

PROCESSOR_POWER_POLICY ProcessorPolicy(BYTE throttle) noexcept
{
    // From the lightest idle state to the deepest: who may go deeper, who may come back.
    constexpr PROCESSOR_POWER_POLICY_INFO kIdleStates[] = {
        {10000, 0, 0, 20, 0, {}, 1, 0, 0},
        {10000, 0, 0, 40, 30, {}, 1, 1, 0},
        {10000, 0, 0, 0, 30, {}, 0, 1, 0},
    };
    PROCESSOR_POWER_POLICY policy{};
    policy.Revision = 1;
    policy.DynamicThrottle = throttle;
    policy.PolicyCount = 3;
    std::copy(std::begin(kIdleStates), std::end(kIdleStates), policy.Policy);
    return policy;
}

MACHINE_PROCESSOR_POWER_POLICY ProcessorPolicies(const SchemeDefaults& scheme) noexcept
{
    return {1, ProcessorPolicy(scheme.mains.throttle), ProcessorPolicy(scheme.battery.throttle)};
}

GLOBAL_USER_POWER_POLICY GlobalUserPolicy() noexcept
{
    constexpr POWER_ACTION_POLICY kStandby = {PowerActionSleep, POWER_ACTION_QUERY_ALLOWED, 0};
    constexpr POWER_ACTION_POLICY kShutdown = {PowerActionShutdown, POWER_ACTION_QUERY_ALLOWED, 0};
    constexpr DWORD kNotify = POWER_LEVEL_USER_NOTIFY_TEXT | POWER_LEVEL_USER_NOTIFY_SOUND;
    GLOBAL_USER_POWER_POLICY policy{};
    policy.Revision = 1;
    policy.PowerButtonAc = kShutdown;
    policy.PowerButtonDc = kShutdown;
    policy.SleepButtonAc = kStandby;
    policy.SleepButtonDc = kStandby;
    policy.LidCloseAc = kStandby;
    policy.LidCloseDc = kStandby;
    policy.DischargePolicy[DISCHARGE_POLICY_CRITICAL] = {
        TRUE, {}, 3, {PowerActionHibernate, POWER_ACTION_CRITICAL, kNotify}, PowerSystemHibernate};
    policy.DischargePolicy[DISCHARGE_POLICY_LOW] = {
        TRUE, {}, 10, {PowerActionNone, 0, kNotify}, PowerSystemSleeping3};
    policy.GlobalFlags = EnableSysTrayBatteryMeter | EnablePasswordLogon;
    return policy;
}

GLOBAL_MACHINE_POWER_POLICY GlobalMachinePolicy() noexcept
{
    return {1, PowerSystemWorking, PowerSystemWorking, 3};
}

constexpr GUID kDisk = {0x0012EE47, 0x9041, 0x4B5D, {0x9B, 0x77, 0x53, 0x5F, 0xBA, 0x8B, 0x14, 0x42}};
constexpr GUID kDiskOff = {0x6738E2C4, 0xE8A5, 0x4A42, {0xB1, 0x6A, 0xE0, 0x40, 0xE7, 0x69, 0x75, 0x6E}};
constexpr GUID kSleep = {0x238C9FA8, 0x0AAD, 0x41ED, {0x83, 0xF4, 0x97, 0xBE, 0x24, 0x2C, 0x8F, 0x20}};
constexpr GUID kStandbyIdle = {0x29F6C1DB, 0x86DA, 0x48C5, {0x9F, 0xDB, 0xF2, 0xB6, 0x7B, 0x1F, 0x44, 0xDA}};
constexpr GUID kHibernateIdle = {
    0x9D7815A6, 0x7EE4, 0x497E, {0x88, 0x88, 0x51, 0x5A, 0x05, 0xF0, 0x23, 0x64}};
constexpr GUID kVideo = {0x7516B95F, 0xF776, 0x4464, {0x8C, 0x53, 0x06, 0x16, 0x7F, 0x40, 0xCC, 0x99}};
constexpr GUID kVideoOff = {0x3C0BC021, 0xC8A8, 0x4E07, {0xA9, 0x73, 0x6B, 0x14, 0xCB, 0xCB, 0x2B, 0x7E}};
constexpr GUID kBrightness = {0xADED5E82, 0xB909, 0x4619, {0x99, 0x49, 0xF5, 0xD7, 0x1D, 0xAC, 0x0B, 0xCB}};
constexpr GUID kProcessor = {0x54533251, 0x82BE, 0x4824, {0x96, 0xC1, 0x47, 0xB6, 0x0B, 0x74, 0x0D, 0x00}};
constexpr GUID kThrottleMaximum = {
    0xBC5038F7, 0x23E0, 0x4960, {0x96, 0xDA, 0x33, 0xAB, 0xAF, 0x59, 0x35, 0xEC}};
constexpr GUID kThrottleMinimum = {
    0x893DEE8E, 0x2BEF, 0x41E0, {0x89, 0xC6, 0xB5, 0x5D, 0x09, 0x29, 0x96, 0x4C}};
constexpr GUID kIdleStatePolicy = {
    0x68F262A7, 0xF621, 0x4069, {0xB9, 0xA5, 0x48, 0x74, 0x16, 0x9B, 0xE2, 0x3C}};
constexpr GUID kPerformanceStatePolicy = {
    0xBBDC3814, 0x18E9, 0x4463, {0x8A, 0x55, 0xD1, 0x97, 0x32, 0x7C, 0x45, 0xC0}};

constexpr GUID kBalanced = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};
constexpr GUID kHighPerformance = {
    0x8C5E7FDA, 0xE8BF, 0x4A96, {0x9A, 0x85, 0xA6, 0xE2, 0x3A, 0x8C, 0x63, 0x5C}};
constexpr GUID kPowerSaver = {0xA1841308, 0x3541, 0x4FAB, {0xBC, 0x81, 0xF7, 0x15, 0x56, 0xF2, 0x0B, 0x4A}};

struct GuidName
{
    GUID guid;
    const wchar_t* name;
};

constexpr GuidName kGuidSchemes[] = {
    {kBalanced, L"Balanced"}, {kHighPerformance, L"High performance"}, {kPowerSaver, L"Power saver"}};

constexpr GuidName kSubGroups[] = {{kDisk, L"Hard disk"},
                                   {kSleep, L"Sleep"},
                                   {kVideo, L"Display"},
                                   {kProcessor, L"Processor power management"}};

struct SourceValues
{
    DWORD mains;
    DWORD battery;
};

// A published setting and its values in the schemes of `kGuidSchemes`, in their order. Times in seconds,
// the rest in percent but the two policies.
struct SettingDefaults
{
    GUID subGroup;
    GUID setting;
    const wchar_t* name;
    SourceValues values[std::size(kGuidSchemes)];
};

constexpr SettingDefaults kSettings[] = {
    {kDisk,
     kDiskOff,
     L"Turn off hard disk after",
     {{20 * kMinute, 10 * kMinute}, {20 * kMinute, 20 * kMinute}, {20 * kMinute, 5 * kMinute}}},
    {kSleep, kStandbyIdle, L"Sleep after", {{kHour, 15 * kMinute}, {0, kHour}, {kHour, 15 * kMinute}}},
    {kSleep,
     kHibernateIdle,
     L"Hibernate after",
     {{18 * kHour, 18 * kHour}, {0, 18 * kHour}, {18 * kHour, 18 * kHour}}},
    {kVideo,
     kVideoOff,
     L"Turn off display after",
     {{20 * kMinute, 5 * kMinute}, {20 * kMinute, 20 * kMinute}, {20 * kMinute, 3 * kMinute}}},
    {kVideo, kBrightness, L"Display brightness", {{100, 71}, {100, 100}, {57, 28}}},
    {kProcessor, kThrottleMinimum, L"Minimum processor state", {{5, 5}, {100, 5}, {5, 5}}},
    {kProcessor, kThrottleMaximum, L"Maximum processor state", {{100, 100}, {100, 100}, {50, 50}}},
    {kProcessor, kIdleStatePolicy, L"Processor idle policy", {{2, 3}, {4, 5}, {2, 3}}},
    {kProcessor, kPerformanceStatePolicy, L"Processor performance policy", {{2, 3}, {4, 5}, {2, 3}}},
};

bool PutText(ValueWriter& writer, const WideText& path, const wchar_t* name, const wchar_t* text)
{
    const auto size = static_cast<DWORD>((Length(text) + 1) * sizeof(wchar_t));
    return writer.Put(path.data(), name, ValueKind::Text, text, size);
}

bool PutNumber(ValueWriter& writer, const WideText& path, const wchar_t* name, DWORD number)
{
    return writer.Put(path.data(), name, ValueKind::Number, &number, sizeof number);
}

template <class Record>
bool PutPolicies(ValueWriter& writer, const WideText& path, const Record& record)
{
    return writer.Put(path.data(), kPoliciesValue, ValueKind::Bytes, &record, sizeof record);
}

bool PutMachineAnswers(ValueWriter& writer)
{
    const MachineAnswers answers = DefaultMachineAnswers();
    const WideText path = ToText(kMachineAnswersKey);
    const auto table = MachineAnswerTable();
    return std::all_of(table.begin(), table.end(),
                       [&](const MachineAnswer& answer)
                       { return PutNumber(writer, path, answer.name, NumberOf(answers, answer)); });
}

bool PutMachineSchemes(ValueWriter& writer)
{
    DWORD number = 0;
    for (const SchemeDefaults& scheme : kSchemes)
    {
        if (!PutPolicies(writer, Join(ToText(kMachineSchemesKey), number), MachinePolicy(scheme)) ||
            !PutPolicies(writer, Join(ToText(kProcessorSchemesKey), number), ProcessorPolicies(scheme)))
        {
            return false;
        }
        ++number;
    }
    return PutText(writer, ToText(kMachinePowerKey), kLastIdValue, ToText(number - 1).data()) &&
           PutPolicies(writer, ToText(kMachineGlobalKey), GlobalMachinePolicy());
}

bool PutKnownSettings(ValueWriter& writer)
{
    for (const GuidName& subGroup : kSubGroups)
    {
        if (!PutText(writer, Join(ToText(kKnownSettingsKey), subGroup.guid), kFriendlyNameValue,
                     subGroup.name))
        {
            return false;
        }
    }
    for (const SettingDefaults& row : kSettings)
    {
        const WideText path = Join(Join(ToText(kKnownSettingsKey), row.subGroup), row.setting);
        if (!PutText(writer, path, kFriendlyNameValue, row.name))
        {
            return false;
        }
    }
    return true;
}

bool PutGuidSchemes(ValueWriter& writer)
{
    for (std::size_t i = 0; i < std::size(kGuidSchemes); ++i)
    {
        const WideText scheme = Join(ToText(kSettingSchemesKey), kGuidSchemes[i].guid);
        if (!PutText(writer, scheme, kFriendlyNameValue, kGuidSchemes[i].name))
        {
            return false;
        }
        for (const SettingDefaults& row : kSettings)
        {
            const WideText path = Join(Join(scheme, row.subGroup), row.setting);
            if (!PutNumber(writer, path, kMainsValue, row.values[i].mains) ||
                !PutNumber(writer, path, kBatteryValue, row.values[i].battery))
            {
                return false;
            }
        }
    }
    return PutText(writer, ToText(kSettingSchemesKey), kActiveSchemeValue, ToText(kBalanced).data());
}

} // namespace

MachineAnswers DefaultMachineAnswers() noexcept
{
    constexpr DWORD kCapacity = 48000;
    MachineAnswers answers{};
    answers.status = {AC_LINE_ONLINE,       BATTERY_FLAG_HIGH,   kFullPercent, 0,
                      BATTERY_LIFE_UNKNOWN, BATTERY_LIFE_UNKNOWN};
    answers.battery.AcOnLine = TRUE;
    answers.battery.BatteryPresent = TRUE;
    answers.battery.MaxCapacity = kCapacity;
    answers.battery.RemainingCapacity = kCapacity;
    answers.battery.EstimatedTime = BATTERY_LIFE_UNKNOWN;
    answers.battery.DefaultAlert1 = kCapacity * 3 / 100;
    answers.battery.DefaultAlert2 = kCapacity / 10;
    answers.hibernateAllowed = TRUE;
    return answers;
}

bool WriteMachineDefaults(ValueWriter& writer, DWORD majorVersion)
{
    constexpr DWORD kFirstWithGuids = 6;
    return PutMachineAnswers(writer) && PutMachineSchemes(writer) &&
           (majorVersion < kFirstWithGuids || (PutKnownSettings(writer) && PutGuidSchemes(writer)));
}

bool WriteUserDefaults(ValueWriter& writer)
{
    DWORD number = 0;
    for (const SchemeDefaults& scheme : kSchemes)
    {
        const WideText path = Join(ToText(kUserSchemesKey), number);
        if (!PutText(writer, path, kNameValue, scheme.name) ||
            !PutText(writer, path, kDescriptionValue, scheme.description) ||
            !PutPolicies(writer, path, UserPolicy(scheme)))
        {
            return false;
        }
        ++number;
    }
    return PutPolicies(writer, ToText(kUserGlobalKey), GlobalUserPolicy()) &&
           PutText(writer, ToText(kUserPowerKey), kCurrentSchemeValue,
                   ToText(static_cast<DWORD>(kNotebookScheme)).data());
}

} // namespace power_store
