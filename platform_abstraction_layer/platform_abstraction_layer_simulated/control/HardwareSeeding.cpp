// control/HardwareSeeding.cpp
//
// The default hardware, as it stands in machine.ini.

#include "control/Seeding.h"

#include <winnt.h>

namespace simulated
{

namespace
{

// Registers: the embedded controller's items are backlight, wireless, LAN, 3G and Bluetooth. The processor
// has ratios 6 to 12 with voltage numbers 10 to 21. The chipset is recognised by its LPC bridge at 00:1F.0,
// whose register 0xF0 locates the root complex; the word at 0x3418 in there disables functions.
constexpr std::string_view kHardware = R"(
[Driver]
Present=1
Busy=0

[EmbeddedController]
0xC0=0x05
0xC1=0x01
0xC2=0x01
0xC3=0x00
0xC4=0x01

[ControlMethods]
GWRI=0x00000001
GDBG=0x00000000
_STA=0x0000000F
EBTR 0x0F=0x00 0x29 0x00 0x64 0x0B 0xA6 0x2E 0x42 0x00 0x00 0x00 0x00

[Processor]
Cores=4

[PciObjects]
\Device\NTPNP_PCI0000=00:00.0
\Device\NTPNP_PCI0001=00:1B.0
\Device\NTPNP_PCI0002=00:1C.0
\Device\NTPNP_PCI0003=00:1D.0
\Device\NTPNP_PCI0004=00:1D.7
\Device\NTPNP_PCI0005=00:1F.0
\Device\NTPNP_PCI0006=00:1F.2
\Device\NTPNP_PCI0007=00:1F.3
\Device\NTPNP_PCI0008=02:00.0
\Device\NTPNP_PCI0009=03:00.0

[Pci 00:00.0]
0x00=86 80 A0 27 06 00 90 20 03 00 00 06 00 00 00 00

[Pci 00:1B.0]
0x00=86 80 D8 27 06 00 10 00 02 00 03 04 10 00 00 00

[Pci 00:1C.0]
0x00=86 80 D0 27 07 00 10 00 02 00 04 06 10 00 81 00

[Pci 00:1D.0]
0x00=86 80 C8 27 05 00 80 02 02 00 03 0C 00 00 80 00

[Pci 00:1D.7]
0x00=86 80 CC 27 06 00 90 02 02 20 03 0C 00 00 00 00

[Pci 00:1F.0]
0x00=86 80 B9 27 07 00 10 02 02 00 01 06 00 00 80 00
0x40=01 10 00 00 80 00 00 00 81 11 00 00 10 00 00 00
0xF0=01 C0 D1 FE 00 00 00 00 00 00 00 00 00 00 00 00

[Pci 00:1F.2]
0x00=86 80 C4 27 05 00 B0 02 02 80 01 01 00 00 00 00

[Pci 00:1F.3]
0x00=86 80 DA 27 01 00 80 02 02 00 05 0C 00 00 00 00

[Pci 02:00.0]
0x00=EC 10 68 81 07 00 10 00 01 00 00 02 10 00 00 00

[Pci 03:00.0]
0x00=86 80 22 42 06 00 10 00 02 00 80 02 10 00 00 00

[MemoryRanges]
0xFED1C000=0x00004000

[Memory]
0xFED1F418=0x00000000

[Ports]
0x00B2=0x00
0x00B3=0x00
0x1000=0x00
0x1001=0x00
0x1002=0x00
0x1003=0x00

[Graphics]
Installed=1
Capabilities=0x00000007
FRQG=0x00000001
ABR=0x00000000 0x00000000 0x00000000 0x00000000 0x00000000
LUMS=0x00000001 0x00000000 0x00000000 0x00000003 0x00000000

[Desktop]
Composition=1

[Device ACPI_HAL\PNP0C08\0]
Class={4D36E97D-E325-11CE-BFC1-08002BE10318}
Description=Microsoft ACPI-Compliant System
Disableable=0

[Device ACPI\PNP0A08\2]
Class={4D36E97D-E325-11CE-BFC1-08002BE10318}
Description=PCI bus
Parent=ACPI_HAL\PNP0C08\0
Disableable=0

[Device PCI\VEN_8086&DEV_27B9&SUBSYS_00000000&REV_02\3&33FD14CA&0&F8]
Class={4D36E97D-E325-11CE-BFC1-08002BE10318}
Description=Intel(R) 82801GBM (ICH7-M) LPC Interface Controller - 27B9
Parent=ACPI\PNP0A08\2
Disableable=0

[Device PCI\VEN_10EC&DEV_8168&SUBSYS_816810EC&REV_01\4&1B2F3C5D&0&00E0]
Class={4D36E972-E325-11CE-BFC1-08002BE10318}
Description=Realtek PCIe GBE Family Controller
Parent=ACPI\PNP0A08\2
Driver={4D36E972-E325-11CE-BFC1-08002BE10318}\0000

[Device PCI\VEN_8086&DEV_4222&SUBSYS_10008086&REV_02\4&29E5C4BE&0&00E1]
Class={4D36E972-E325-11CE-BFC1-08002BE10318}
Description=Intel(R) Wireless WiFi Link 4965AGN
Parent=ACPI\PNP0A08\2
Driver={4D36E972-E325-11CE-BFC1-08002BE10318}\0001

[Device ACPI\PNP0C0A\0]
Class={72631E54-78A4-11D0-BCF7-00AA00B7B32A}
Description=Microsoft ACPI-Compliant Control Method Battery
Parent=ACPI_HAL\PNP0C08\0
Interface={72631E54-78A4-11D0-BCF7-00AA00B7B32A}
Tag=1
Capabilities=0x80000000
Technology=1
Chemistry=LION
DesignedCapacity=57720
DefaultAlert1=2886
DefaultAlert2=5772
CriticalBias=0
CycleCount=41
Voltage=11842
Temperature=2982
ManufactureDate=2008-03-17
DeviceName=DS-4400
ManufactureName=Kelvo
SerialNumber=01207
UniqueID=01207KelvoDS-4400
)";

constexpr unsigned kCores = 4;
constexpr const char* kCoreRegisters = R"(
0x198=0x00000C1506000C15
0x199=0x0000000000000C15
0x19A=0x0000000000000000
0x19D=0x000000000000000A
)";

struct DriverValue
{
    const char* number;
    const char* name;
    const char* text;
};

constexpr const char* kNetKeys =
    "SYSTEM\\CurrentControlSet\\Control\\Class\\{4D36E972-E325-11CE-BFC1-08002BE10318}";

constexpr DriverValue kDriverValues[] = {
    {"0000", "DriverDesc", "Realtek PCIe GBE Family Controller"},
    {"0000", "ProviderName", "Realtek"},
    {"0000", "DuplexMode", "1"},
    {"0000", "*SpeedDuplex", "0"},
    {"0001", "DriverDesc", "Intel(R) Wireless WiFi Link 4965AGN"},
    {"0001", "ProviderName", "Intel"},
};

} // namespace

std::string DefaultHardware()
{
    std::string text(kHardware.substr(1)); // the line's end behind the opening parenthesis
    for (unsigned core = 0; core < kCores; ++core)
    {
        text += "\n[Core " + std::to_string(core) + ']' + kCoreRegisters;
    }
    return text;
}

void SeedMachineDevices(registry::Hive& hive)
{
    hive.Put(kNetKeys, "", registry::TextValue("Network adapters", REG_SZ));
    hive.Put(kNetKeys, "Class", registry::TextValue("Net", REG_SZ));
    for (const DriverValue& value : kDriverValues)
    {
        hive.Put(std::string(kNetKeys) + '\\' + value.number, value.name,
                 registry::TextValue(value.text, REG_SZ));
    }
}

} // namespace simulated
