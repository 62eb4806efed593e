// control/tool/Show.cpp
//
// Prints an overview of the machine.

#include "control/Notebook.h"
#include "control/PowerSource.h"
#include "control/Profiles.h"
#include "control/RegistryEditor.h"
#include "control/tool/Verbs.h"
#include "machine/Accounts.h"
#include "machine/DeviceTree.h"
#include "machine/EmbeddedController.h"
#include "machine/Graphics.h"
#include "machine/KernelDriver.h"
#include "machine/Machine.h"
#include "machine/Processor.h"

#include <cstdio>
#include <filesystem>

using namespace simulated;

namespace notebook_tool
{

namespace
{

void ShowSystem()
{
    std::printf("%s\n", Machine::Folder().c_str());
    std::printf(
        "Windows        %s.%s.%s, service pack %s, code page %s\n",
        Machine::Read("Machine", "Major", "?").c_str(), Machine::Read("Machine", "Minor", "?").c_str(),
        Machine::Read("Machine", "Build", "?").c_str(), Machine::Read("Machine", "ServicePack", "?").c_str(),
        Machine::Read("Machine", "AnsiCodePage", "?").c_str());
    for (const std::string& name : Machine::Keys("Modules"))
    {
        std::printf("Module         %s: %s\n", name.c_str(), Machine::Read("Modules", name, "").c_str());
    }
    const std::string configuration = std::string(Notebook::kInstallationFolder) + "ORVLCfg.ini";
    std::printf("Installation   %s\n",
                std::filesystem::exists(Machine::PathOf(profiles::PartOf(configuration)))
                    ? configuration.c_str()
                    : "none");
}

void ShowAccounts()
{
    for (const Account& account : Accounts::All())
    {
        std::printf("Account        %-16s %-10s %s\n", account.name.c_str(),
                    account.isLoggedOn        ? "logged on"
                    : account.profile.empty() ? "stranger"
                                              : "absent",
                    account.profile.c_str());
    }
}

// By number for the account and, where Windows has such schemes, by GUID for the machine.
void ShowScheme()
{
    const std::optional<std::string> guid = RegistryEditor::ReadText(
        "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Power\\User\\PowerSchemes", "ActivePowerScheme");
    const std::optional<std::string> number =
        RegistryEditor::ReadText("HKCU\\Control Panel\\PowerCfg", "CurrentPowerPolicy");
    const std::optional<DWORD> told =
        RegistryEditor::ReadNumber("HKLM\\Software\\Kelvo\\ORVA", "CurrentPwrSchemeID");
    std::printf("Scheme         number %s%s%s is active, %s was told to the companion\n",
                number.value_or("none").c_str(), guid ? ", GUID " : "", guid.value_or("").c_str(),
                told ? std::to_string(*told).c_str() : "none");
}

void ShowPower()
{
    const PowerAnswers power = PowerSource::Get();
    std::printf("Power          mains %s, battery %u %%, hibernation %s\n",
                power.status.ACLineStatus == 1 ? "in" : "out",
                static_cast<unsigned>(power.status.BatteryLifePercent),
                power.hibernateAllowed ? "allowed" : "refused");
    ShowScheme();
}

void ShowHardware()
{
    std::printf("Driver         %s%s\n", KernelDriver::IsPresent() ? "present" : "absent",
                KernelDriver::IsBusy() ? ", busy" : "");
    std::printf("Controller    ");
    for (const EmbeddedController::NamedItem& item : EmbeddedController::kNamedItems)
    {
        const std::optional<DWORD> value = EmbeddedController::Item(item.number);
        std::printf(" %s %s", item.name, value ? std::to_string(*value).c_str() : "absent");
    }
    std::printf("\n");
    const std::uint64_t status = Processor::Read(0, Processor::kPerformanceStatus).value_or(0);
    std::printf("Processor      ratio %u of %u\n", static_cast<unsigned>((status >> 8) & 0xFF),
                static_cast<unsigned>((status >> 40) & 0x1F));
    std::printf("Graphics       driver %s\n", Graphics::IsInstalled() ? "installed" : "missing");
    for (const std::string& device : DeviceTree::All())
    {
        const DeviceTree::State state = DeviceTree::StateOf(device);
        std::printf("Device         %-55s %s%s\n",
                    DeviceTree::Value(device, "Description").value_or("").c_str(),
                    state.isPresent ? "" : "not there ",
                    state.problem == 0 ? "" : ("problem " + std::to_string(state.problem)).c_str());
    }
}

} // namespace

Outcome Show(const Request&)
{
    ShowSystem();
    ShowAccounts();
    ShowPower();
    ShowHardware();
    return Outcome::Done;
}

} // namespace notebook_tool
