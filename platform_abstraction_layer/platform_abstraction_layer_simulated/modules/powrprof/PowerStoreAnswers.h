// modules/powrprof/PowerStoreAnswers.h
//
// What the machine reports about its power, and under which names the registry keeps it.
#pragma once

#include <windows.h>

#include <cstddef>
#include <span>

namespace power_store
{

inline constexpr const wchar_t* kMachineAnswersKey = L"SOFTWARE\\SimulatedNotebook\\Power";

/// The machine's power as a whole.
struct MachineAnswers
{
    SYSTEM_POWER_STATUS status;
    SYSTEM_BATTERY_STATE battery;
    BOOLEAN hibernateAllowed;
};

enum class AnswerGroup
{
    Status,
    Battery,
    Hibernation
};

/// One reported value: the registry value that keeps it and the field of 1 or 4 bytes that it fills.
struct MachineAnswer
{
    AnswerGroup group;
    const wchar_t* name;
    std::size_t offset;
    std::size_t size;
};

std::span<const MachineAnswer> MachineAnswerTable() noexcept;

/// The value of `answer` in `answers`.
DWORD NumberOf(const MachineAnswers& answers, const MachineAnswer& answer) noexcept;

} // namespace power_store
