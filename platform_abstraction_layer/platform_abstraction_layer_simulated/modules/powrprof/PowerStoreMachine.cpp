// modules/powrprof/PowerStoreMachine.cpp
//
// The machine's power state in the registry, one value for each field.

#include "PowerStoreMachine.h"

#include "PowerStoreKey.h"

#include <cstring>

namespace power_store
{

namespace
{

// Fills the fields of one group.
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

// Copies the part of the answers that one group fills to `to`, or leaves it alone.
template <class Part>
DWORD ReadPart(AnswerGroup group, Part MachineAnswers::*part, Part& to)
{
    MachineAnswers answers{};
    const DWORD error = ReadGroup(group, answers);
    if (error == ERROR_SUCCESS)
    {
        to = answers.*part;
    }
    return error;
}

} // namespace

DWORD ReadPowerStatus(SYSTEM_POWER_STATUS& status)
{
    return ReadPart(AnswerGroup::Status, &MachineAnswers::status, status);
}

DWORD ReadBatteryState(SYSTEM_BATTERY_STATE& state)
{
    return ReadPart(AnswerGroup::Battery, &MachineAnswers::battery, state);
}

DWORD ReadHibernateAllowed(BOOLEAN& allowed)
{
    return ReadPart(AnswerGroup::Hibernation, &MachineAnswers::hibernateAllowed, allowed);
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
