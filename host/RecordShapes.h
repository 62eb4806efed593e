// host/RecordShapes.h
//
// The records of the request interface as lists of named fields, so that a payload can be given and a reply
// shown field by field. Offsets and sizes are those of the wire; the numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace host
{

/// What a number stands for, by its value.
struct ValueName
{
    std::int32_t value;
    const char* name;
};

enum class FieldKind
{
    Number,     ///< 32 bits, signed
    Text,       ///< narrow, in the ANSI code page, terminated within the field
    Characters, ///< narrow, fills its field, not terminated
};

struct Field
{
    const char* name;
    FieldKind kind;
    std::size_t offset;
    std::size_t size;
    const char* unit;                 ///< empty where the number has none
    std::span<const ValueName> names; ///< empty where the value has no name
    std::int32_t defaultValue;        ///< what a payload holds when the caller doesn't give the field
};

/// A record: its size on the wire and its fields in order. A reply of kind "text" has size 0: it is as long
/// as the text.
struct RecordShape
{
    const char* name; ///< the record's name in the interface, or what a single value is
    std::size_t size;
    std::span<const Field> fields;
};

extern const RecordShape kNoRecord;
extern const RecordShape kTextReply;
extern const RecordShape kAnswer;
extern const RecordShape kSchemeNumber;
extern const RecordShape kCpuSpeed;
extern const RecordShape kBacklightLevel;
extern const RecordShape kSwitch;
extern const RecordShape kSwitchStatus;
extern const RecordShape kLanSpeed;
extern const RecordShape kCount;
extern const RecordShape kBatteryIndex;
extern const RecordShape kClearSelector;
extern const RecordShape kBatteryInfo;
extern const RecordShape kPowerInfo;
extern const RecordShape kConfigData;
extern const RecordShape kVariableData;
extern const RecordShape kSchemeIdentity;
extern const RecordShape kWholeScheme;
extern const RecordShape kAutoRun;

} // namespace host
