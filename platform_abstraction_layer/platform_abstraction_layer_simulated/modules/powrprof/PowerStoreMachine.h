// modules/powrprof/PowerStoreMachine.h
//
// What the machine reports about its power source, its batteries and hibernation, kept in the registry so
// that all processes see one machine and the power manager needs nothing else. Results are Win32 error
// numbers; a missing value is ERROR_FILE_NOT_FOUND.
#pragma once

#include "PowerStoreAnswers.h"

namespace power_store
{

DWORD ReadPowerStatus(SYSTEM_POWER_STATUS& status);
DWORD ReadBatteryState(SYSTEM_BATTERY_STATE& state);
DWORD ReadHibernateAllowed(BOOLEAN& allowed);

DWORD ReadMachineAnswers(MachineAnswers& answers);
DWORD WriteMachineAnswers(const MachineAnswers& answers);

} // namespace power_store
