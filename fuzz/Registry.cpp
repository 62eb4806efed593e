// fuzz/Registry.cpp
//
// Values of the registry with any type and size. An input is a byte for the generation of Windows (even: 5.1), one
// for the number of values, and for each of them its number in the table, its type, a length and as many bytes;
// then numbers of samples to send.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "control/RegistryEditor.h"

namespace
{

struct Value
{
    const char* key;
    const char* name;
};

#define USER "HKEY_USERS\\S-1-5-18\\"
#define ALICE "HKEY_USERS\\S-1-5-21-1957994488-1220945662-839522115-1003\\"
#define MACHINE "HKEY_LOCAL_MACHINE\\"

constexpr Value kValues[] = {
    {MACHINE "SOFTWARE\\Kelvo\\ORVL", "CfgPath"},
    {MACHINE "SOFTWARE\\Kelvo\\ORVA", "AutoRunFlag"},
    {MACHINE "SOFTWARE\\Kelvo\\ORVL", "CurrentPwrSchemeID"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "ORVA"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg", "LastID"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\PowerPolicies\\1", "Policies"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\ProcessorPolicies\\1",
     "Policies"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg\\GlobalPowerPolicy",
     "Policies"},
    {MACHINE "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-18", "ProfileImagePath"},
    {MACHINE "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\0000",
     "*SpeedDuplex"},
    {MACHINE "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\0000",
     "DriverDesc"},
    {USER "Control Panel\\PowerCfg", "CurrentPowerPolicy"},
    {USER "Control Panel\\PowerCfg\\PowerPolicies\\1", "Policies"},
    {USER "Control Panel\\PowerCfg\\PowerPolicies\\1", "Name"},
    {USER "Control Panel\\PowerCfg\\PowerPolicies\\1", "Description"},
    {USER "Control Panel\\PowerCfg\\GlobalPowerPolicy", "Policies"},
    {ALICE "Control Panel\\PowerCfg", "CurrentPowerPolicy"},
    {ALICE "Control Panel\\PowerCfg\\PowerPolicies\\1", "Policies"},
    {ALICE "Control Panel\\PowerCfg\\GlobalPowerPolicy", "Policies"},
    {ALICE "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", "Local AppData"},
    {ALICE "Volatile Environment", "USERNAME"},
};

#undef MACHINE
#undef ALICE
#undef USER

constexpr int kMostRequests = 3;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    fuzz::Machine::Fresh(input.Byte() % 2 == 0 ? 5 : 6);
    for (unsigned count = input.Byte() % 4; count > 0; --count)
    {
        const Value& value = input.OneOf(kValues);
        const DWORD type = input.Byte();
        if (!simulated::RegistryEditor::Write(value.key, value.name, {type, input.Bytes()}))
        {
            fuzz::Fail("a value can't be written");
        }
    }
    for (int request = 0; request < kMostRequests && !input.IsEmpty(); ++request)
    {
        fuzz::Machine::SendSample(input.Byte());
    }
    fuzz::Machine::Finish();
    return 0;
}
