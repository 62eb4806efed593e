// src/powrprof/PowerStoreMachine.cpp
//
// The machine's answers in the registry, one value for each.

#include "PowerStoreMachine.h"

#include "PowerStoreKey.h"

#include <cstring>

namespace power_store
{

namespace
{

/// Fills the fields of one group.
DWORD ReadGroup(AnswerGroup group, MachineAnswers& answers)
{
    Key key;
    DWORD error = key.Open(HKEY_LOCAL_MACHINE, ToText(kMachineAnswersKey));
    for (const MachineAnswer& answer : MachineAnswerTable())
    {
        DWORD number = 0;
        if (error == ERROR_SUCCESS && answer.group == group)
        {
            error = key.ReadNumber(answer.name, number);
            std::memcpy(reinterpret_cast<BYTE*>(&answers) + answer.offset, &number, answer.size);
        }
    }
    return error;
}

} // namespace

DWORD ReadPowerStatus(SYSTEM_POWER_STATUS& status)
{
    MachineAnswers answers{};
    const DWORD error = ReadGroup(AnswerGroup::Status, answers);
    if (error == ERROR_SUCCESS)
    {
        status = answers.status;
    }
    return error;
}

DWORD ReadBatteryState(SYSTEM_BATTERY_STATE& state)
{
    MachineAnswers answers{};
    const DWORD error = ReadGroup(AnswerGroup::Battery, answers);
    if (error == ERROR_SUCCESS)
    {
        state = answers.battery;
    }
    return error;
}

DWORD ReadHibernateAllowed(BOOLEAN& allowed)
{
    MachineAnswers answers{};
    const DWORD error = ReadGroup(AnswerGroup::Hibernation, answers);
    if (error == ERROR_SUCCESS)
    {
        allowed = answers.hibernateAllowed;
    }
    return error;
}

DWORD ReadMachineAnswers(MachineAnswers& answers)
{
    MachineAnswers found{};
    for (const AnswerGroup group : {AnswerGroup::Status, AnswerGroup::Battery, AnswerGroup::Hibernation})
    {
        if (const DWORD error = ReadGroup(group, found); error != ERROR_SUCCESS)
        {
            return error;
        }
    }
    answers = found;
    return ERROR_SUCCESS;
}

DWORD WriteMachineAnswers(const MachineAnswers& answers)
{
    Key key;
    DWORD error = key.Create(HKEY_LOCAL_MACHINE, ToText(kMachineAnswersKey));
    for (const MachineAnswer& answer : MachineAnswerTable())
    {
        if (error == ERROR_SUCCESS)
        {
            error = key.WriteNumber(answer.name, NumberOf(answers, answer));
        }
    }
    return error;
}

} // namespace power_store
