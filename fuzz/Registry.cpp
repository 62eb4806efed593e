// fuzz/Registry.cpp
//
// Values of the registry with any type and size. An input is a byte for the generation of Windows
// (even: 5.1), one for the number of values, and for each of them its number in the table, its type, a length
// and as many bytes; then numbers of samples to send.

#include "fuzz/Input.h"
#include "fuzz/Machine.h"

#include "control/Notebook.h"
#include "control/RegistryEditor.h"
#include "machine/Accounts.h"

namespace
{

struct Value
{
    const char* account; ///< null for a key of the machine
    const char* key;
    const char* name;
};

#define CLASS "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002BE10318}\\0000"
#define POWER "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg"
#define USER_POWER "Control Panel\\PowerCfg"

constexpr const char* kService = simulated::Notebook::kServiceAccount;
constexpr const char* kUser = simulated::Notebook::kFirstUser;
constexpr Value kValues[] = {
    {nullptr, "SOFTWARE\\Kelvo\\ORVL", "CfgPath"},
    {nullptr, "SOFTWARE\\Kelvo\\ORVL", "CurrentPwrSchemeID"},
    {nullptr, "SOFTWARE\\Kelvo\\ORVA", "AutoRunFlag"},
    {nullptr, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run", "ORVA"},
    {nullptr, "SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\ProfileList\\S-1-5-18", "ProfileImagePath"},
    {nullptr, CLASS, "*SpeedDuplex"},
    {nullptr, CLASS, "DriverDesc"},
    {nullptr, POWER, "LastID"},
    {nullptr, POWER "\\PowerPolicies\\1", "Policies"},
    {nullptr, POWER "\\ProcessorPolicies\\1", "Policies"},
    {nullptr, POWER "\\GlobalPowerPolicy", "Policies"},
    {kService, USER_POWER, "CurrentPowerPolicy"},
    {kService, USER_POWER "\\PowerPolicies\\1", "Policies"},
    {kService, USER_POWER "\\PowerPolicies\\1", "Name"},
    {kService, USER_POWER "\\PowerPolicies\\1", "Description"},
    {kService, USER_POWER "\\GlobalPowerPolicy", "Policies"},
    {kUser, USER_POWER, "CurrentPowerPolicy"},
    {kUser, USER_POWER "\\PowerPolicies\\1", "Policies"},
    {kUser, USER_POWER "\\GlobalPowerPolicy", "Policies"},
    {kUser, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders", "Local AppData"},
    {kUser, "Volatile Environment", "USERNAME"},
};

#undef USER_POWER
#undef POWER
#undef CLASS

std::string KeyOf(const Value& value)
{
    const std::string root = value.account == nullptr
                                 ? "HKEY_LOCAL_MACHINE"
                                 : "HKEY_USERS\\" + simulated::Accounts::Find(value.account)->sid;
    return root + '\\' + value.key;
}

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
        if (!simulated::RegistryEditor::Write(KeyOf(value), value.name, {type, input.Bytes()}))
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
