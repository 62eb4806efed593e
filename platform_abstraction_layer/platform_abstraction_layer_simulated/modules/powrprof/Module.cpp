// modules/powrprof/Module.cpp
//
// PowrProf.dll as the loader knows it: what each generation of Windows exports.

#include "modules/kernel32/Modules.h"

#include <powrprof.h>

namespace
{

using simulated::modules::Address;
using simulated::modules::Export;

constexpr DWORD kGuidGeneration = 6;

const Export kExports[] = {
    {"GetActivePwrScheme", 0, Address(&GetActivePwrScheme)},
    {"SetActivePwrScheme", 0, Address(&SetActivePwrScheme)},
    {"ReadPwrScheme", 0, Address(&ReadPwrScheme)},
    {"WritePwrScheme", 0, Address(&WritePwrScheme)},
    {"ReadProcessorPwrScheme", 0, Address(&ReadProcessorPwrScheme)},
    {"WriteProcessorPwrScheme", 0, Address(&WriteProcessorPwrScheme)},
    {"EnumPwrSchemes", 0, Address(&EnumPwrSchemes)},
    {"DeletePwrScheme", 0, Address(&DeletePwrScheme)},
    {"IsPwrHibernateAllowed", 0, Address(&IsPwrHibernateAllowed)},
    {"ReadGlobalPwrPolicy", 0, Address(&ReadGlobalPwrPolicy)},
    {"WriteGlobalPwrPolicy", 0, Address(&WriteGlobalPwrPolicy)},
    {"CallNtPowerInformation", 0, Address(&CallNtPowerInformation)},
    {"PowerGetActiveScheme", 0, Address(&PowerGetActiveScheme), kGuidGeneration},
    {"PowerSetActiveScheme", 0, Address(&PowerSetActiveScheme), kGuidGeneration},
    {"PowerReadFriendlyName", 0, Address(&PowerReadFriendlyName), kGuidGeneration},
    {"PowerReadACValueIndex", 0, Address(&PowerReadACValueIndex), kGuidGeneration},
    {"PowerReadDCValueIndex", 0, Address(&PowerReadDCValueIndex), kGuidGeneration},
    {"PowerWriteACValueIndex", 0, Address(&PowerWriteACValueIndex), kGuidGeneration},
    {"PowerWriteDCValueIndex", 0, Address(&PowerWriteDCValueIndex), kGuidGeneration},
    {"PowerDeleteScheme", 0, Address(&PowerDeleteScheme), kGuidGeneration},
    {"PowerDuplicateScheme", 0, Address(&PowerDuplicateScheme), kGuidGeneration},
};

const simulated::modules::Registration kRegistration("PowrProf.dll", kExports);

} // namespace
