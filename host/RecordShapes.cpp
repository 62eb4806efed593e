// host/RecordShapes.cpp
//
// The tables of fields.

#include "RecordShapes.h"

#include "plugin/WireRecords.h"

#include <array>

namespace host
{

namespace
{

constexpr ValueName kOnOff[] = {{0, "off"}, {1, "on"}, {2, "unknown"}};
constexpr ValueName kYesNo[] = {{0, "no"}, {1, "yes"}};
constexpr ValueName kSpeeds[] = {{0, "50 %"}, {1, "75 %"}, {2, "adaptive"}, {3, "100 %"}};
constexpr ValueName kAdaptive[] = {{-1, "no value"}, {0, "adaptive"}};
constexpr ValueName kPowerStates[] = {{-1, "unknown"},    {0, "none"},     {1, "on line"},
                                      {2, "discharging"}, {4, "charging"}, {8, "critical"}};
constexpr ValueName kSources[] = {{0, "battery"}, {1, "mains"}};
constexpr ValueName kSelectors[] = {{0, "current user"}, {1, "all users"}};
constexpr ValueName kFileTypes[] = {{0, "installation"}, {1, "profile"}};
constexpr ValueName kUnset[] = {{-1, "no value"}};
constexpr ValueName kNever[] = {{-1, "no value"}, {0, "never"}};
constexpr ValueName kStoredSwitch[] = {{-1, "no value"}, {0, "off"}, {1, "on"}};
constexpr ValueName kUnknown[] = {{-1, "unknown"}};

// A battery's time means time left or time to full, depending on its state.
constexpr const char* kBatteryTime = "s until full, or left while discharging";

constexpr std::size_t kWord = 4;

// No option list has -1, so a whole-scheme edit leaves the variables that the caller didn't name as they
// are.
constexpr std::int32_t kLeaveAlone = -1;

constexpr Field Number(const char* name, std::size_t offset, std::span<const ValueName> names = {},
                       const char* unit = "", std::int32_t defaultValue = 0)
{
    return {name, FieldKind::Number, offset, kWord, unit, names, defaultValue};
}

constexpr Field Text(const char* name, std::size_t offset, std::size_t size)
{
    return {name, FieldKind::Text, offset, size, "", {}, 0};
}

constexpr Field Stored(const char* name, std::size_t offset, std::span<const ValueName> names,
                       const char* unit = "")
{
    return Number(name, offset, names, unit, kLeaveAlone);
}

constexpr std::array kAnswerFields = {Number("answer", 0)};
constexpr std::array kSchemeNumberFields = {Number("scheme", 0)};
constexpr std::array kCpuSpeedFields = {Number("speed", 0, kSpeeds)};
constexpr std::array kBacklightFields = {Number("level", 0)};
constexpr std::array kSwitchFields = {Number("status", 0, kOnOff)};
constexpr std::array kLanSpeedFields = {Number("speed", 0)};
constexpr std::array kCountFields = {Number("count", 0)};
constexpr std::array kBatteryIndexFields = {Number("battery", 0)};
constexpr std::array kSelectorFields = {Number("selector", 0, kSelectors)};

constexpr std::array kBatteryInfoFields = {
    Number("state", 0, kPowerStates),
    Number("percent", 4, kUnknown, "%"),
    Number("time", 8, kUnknown, kBatteryTime),
    Number("designed", 12, {}, "mWh"),
    Number("fullCharged", 16, {}, "mWh"),
    Field{"chemistry", FieldKind::Characters, 23, 4, "", {}, 0},
    Number("extended0", 28),
    Number("extended1", 32),
    Number("extended2", 36),
};

constexpr std::array kPowerInfoFields = {
    Number("state", 0, kPowerStates),
    Number("percent", 4, kUnknown, "%"),
    Number("time", 8, kUnknown, kBatteryTime),
};

constexpr std::array kConfigFields = {
    Number("type", 0, kFileTypes), Text("file", 4, 256),    Text("section", 260, 256), Text("item", 516, 256),
    Text("string", 772, 256),      Number("default", 1028), Number("value", 1032),
};

constexpr std::array kVariableFields = {
    Number("scheme", 0),
    Number("ac", 4, kSources, "", 1),
    Text("name", 8, 32),
    Number("value", 40),
};

constexpr std::array kIdentityFields = {
    Text("name", 0, 32),
    Text("desc", 32, 512),
    Number("scheme", 544),
};

constexpr std::array kWholeSchemeFields = {
    Text("name", 0, 32),
    Text("desc", 32, 512),
    Number("scheme", 544),
    Stored("ac.cpuSpeed", 548, kAdaptive, "%"),
    Stored("ac.backlightLevel", 552, kUnset),
    Stored("ac.lanSpeed", 556, kUnset),
    Stored("ac.lums", 560, kUnset),
    Stored("ac.monitorOffTimeOut", 564, kNever, "s"),
    Stored("ac.standbyTimeOut", 568, kNever, "s"),
    Stored("ac.wifi", 572, kStoredSwitch),
    Stored("ac.lanStatus", 576, kStoredSwitch),
    Stored("ac.threeG", 580, kStoredSwitch),
    Stored("dc.cpuSpeed", 584, kAdaptive, "%"),
    Stored("dc.backlightLevel", 588, kUnset),
    Stored("dc.lanSpeed", 592, kUnset),
    Stored("dc.lums", 596, kUnset),
    Stored("dc.monitorOffTimeOut", 600, kNever, "s"),
    Stored("dc.standbyTimeOut", 604, kNever, "s"),
    Stored("dc.wifi", 608, kStoredSwitch),
    Stored("dc.lanStatus", 612, kStoredSwitch),
    Stored("dc.threeG", 616, kStoredSwitch),
    Number("IfDefault", 620, kYesNo),
    Number("IconNum", 624),
    Number("IfShow", 628, kYesNo, "", 1),
};

constexpr std::array kAutoRunFields = {Number("flag", 0, kOnOff), Text("path", 4, 260)};

// The last field of each record ends where the record does, so a shifted offset doesn't go unnoticed.
template <std::size_t N>
constexpr bool Fills(const std::array<Field, N>& fields, std::size_t size)
{
    return fields[N - 1].offset + fields[N - 1].size == size;
}
static_assert(Fills(kBatteryInfoFields, sizeof(PM_Battery_Info)));
static_assert(Fills(kPowerInfoFields, sizeof(PM_Power_Info)));
static_assert(Fills(kConfigFields, sizeof(PM_Config_Data)));
static_assert(Fills(kVariableFields, sizeof(PM_Variable_Data)));
static_assert(Fills(kWholeSchemeFields, sizeof(PM_Power_Scheme_Data_ALL)));
static_assert(Fills(kAutoRunFields, sizeof(PM_AutoRun_Data)));

} // namespace

const RecordShape kNoRecord = {"nothing", 0, {}};
const RecordShape kTextReply = {"text", 0, {}};
const RecordShape kAnswer = {"answer", kWord, kAnswerFields};
const RecordShape kSchemeNumber = {"scheme number", kWord, kSchemeNumberFields};
const RecordShape kCpuSpeed = {"CPU speed", kWord, kCpuSpeedFields};
const RecordShape kBacklightLevel = {"backlight level", kWord, kBacklightFields};
const RecordShape kSwitch = {"switch", kWord, kSwitchFields};
const RecordShape kSwitchStatus = {"status", kWord, kSwitchFields};
const RecordShape kLanSpeed = {"LAN speed", kWord, kLanSpeedFields};
const RecordShape kCount = {"count", kWord, kCountFields};
const RecordShape kBatteryIndex = {"battery index", kWord, kBatteryIndexFields};
const RecordShape kClearSelector = {"selector", kWord, kSelectorFields};
const RecordShape kBatteryInfo = {"PM_Battery_Info", sizeof(PM_Battery_Info), kBatteryInfoFields};
const RecordShape kPowerInfo = {"PM_Power_Info", sizeof(PM_Power_Info), kPowerInfoFields};
const RecordShape kConfigData = {"PM_Config_Data", sizeof(PM_Config_Data), kConfigFields};
const RecordShape kVariableData = {"PM_Variable_Data", sizeof(PM_Variable_Data), kVariableFields};
const RecordShape kSchemeIdentity = {"PM_Power_Scheme_Data", sizeof(PM_Power_Scheme_Data), kIdentityFields};
const RecordShape kWholeScheme = {"PM_Power_Scheme_Data_ALL", sizeof(PM_Power_Scheme_Data_ALL),
                                  kWholeSchemeFields};
const RecordShape kAutoRun = {"PM_AutoRun_Data", sizeof(PM_AutoRun_Data), kAutoRunFields};

} // namespace host
