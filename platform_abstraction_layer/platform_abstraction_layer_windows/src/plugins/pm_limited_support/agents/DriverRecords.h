// agents/DriverRecords.h
//
// What goes over the wire to the kernel driver "\\.\orvlebl": its I/O controls with their sizes, and its
// records. All fields are little-endian. Opening, closing and locking are the channel's (OrvlDrvMgr.h).
#pragma once

#include <windows.h>

#include <cstddef>
#include <iterator>

/// The driver's functions; an I/O control code is `kDriverControlBase` plus four times the number.
enum class DriverFunction : DWORD
{
    ExecControlMethod,
    ReadMsr,
    WriteMsr,
    ReadPciConfig,
    WritePciConfig,
    ReadPort,
    WritePort,
    MapMemory,
    UnmapMemory,
    ReadMemory,
    WriteMemory,
    GetDeviceProperty,
    Count
};

/// Device type 0x8226, `METHOD_BUFFERED`, `FILE_ANY_ACCESS`, function 0.
constexpr DWORD kDriverControlBase = 0x82260000;

constexpr DWORD ControlCode(DriverFunction function) noexcept
{
    return kDriverControlBase + 4 * static_cast<DWORD>(function);
}

constexpr DWORD IOCTL_EXEC_CTRL_METHOD = ControlCode(DriverFunction::ExecControlMethod);
constexpr DWORD IOCTL_ORVLEBL_MSR_READ = ControlCode(DriverFunction::ReadMsr);
constexpr DWORD IOCTL_ORVLEBL_MSR_WRITE = ControlCode(DriverFunction::WriteMsr);
constexpr DWORD IOCTL_READ_PCI_CONFIG = ControlCode(DriverFunction::ReadPciConfig);
constexpr DWORD IOCTL_WRITE_PCI_CONFIG = ControlCode(DriverFunction::WritePciConfig);
constexpr DWORD IOCTL_ORVLEBL_PORT_READ = ControlCode(DriverFunction::ReadPort);
constexpr DWORD IOCTL_WRITE_PORT = ControlCode(DriverFunction::WritePort);
constexpr DWORD IOCTL_MAP_MEMORY = ControlCode(DriverFunction::MapMemory);
constexpr DWORD IOCTL_UNMAP_MEMEMORY = ControlCode(DriverFunction::UnmapMemory);
constexpr DWORD IOCTL_READ_MEMORY = ControlCode(DriverFunction::ReadMemory);
constexpr DWORD IOCTL_WRITE_MEMORY = ControlCode(DriverFunction::WriteMemory);
constexpr DWORD IOCTL_GET_DEVICE_PROPERTY = ControlCode(DriverFunction::GetDeviceProperty);

/// Room of a device object name in a record, in UTF-16 units with the terminator.
constexpr std::size_t kDeviceNameUnits = 50;

// A record that carries data has room for its first byte and is rounded up to whole words. Its message is the
// record's size minus that byte plus the data, so up to three bytes follow the data in a message. The
// rounding has a name, because the compiler's own would go to the driver with whatever the stack held.

/// Asks for a firmware control method by its four-letter name.
struct ControlMethodInput
{
    ULONG method;      ///< offset 0: four ASCII characters, the first at the lowest address
    ULONG argument[3]; ///< offset 4
};
static_assert(sizeof(ControlMethodInput) == 16 && offsetof(ControlMethodInput, argument) == 4);

/// A method's name as the number that the driver takes: the first letter at the lowest address.
constexpr ULONG ControlMethod(const char (&name)[5]) noexcept
{
    ULONG number = 0;
    for (int letter = 3; letter >= 0; --letter)
    {
        number = (number << 8) | static_cast<unsigned char>(name[letter]);
    }
    return number;
}

constexpr ULONG kGeneralRead = ControlMethod("GRDI");  ///< item; the item's value
constexpr ULONG kGeneralWrite = ControlMethod("GWRI"); ///< item, value; a result word
constexpr ULONG kDebug = ControlMethod("GDBG");
constexpr ULONG kStatus = ControlMethod("_STA");
constexpr ULONG ORVL_GCW_BATTERY_METHOD = ControlMethod("EBTR"); ///< rows, 0, selector; the rows

/// The rows that the battery method answers; each carries one byte in its low eight bits.
constexpr ULONG kBatteryRows = 12;

static_assert(kGeneralRead == 0x49445247 && kGeneralWrite == 0x49525747 && kDebug == 0x47424447 &&
              kStatus == 0x4154535F && ORVL_GCW_BATTERY_METHOD == 0x52544245);

/// A model-specific register. The high half comes first.
struct MsrRecord
{
    ULONG index; ///< offset 0: set on write, without meaning on read
    ULONG high;  ///< offset 4: bits 63..32
    ULONG low;   ///< offset 8: bits 31..0
};
static_assert(sizeof(MsrRecord) == 12 && offsetof(MsrRecord, high) == 4 && offsetof(MsrRecord, low) == 8);

/// A range of a PCI function's configuration space.
struct PciConfigRecord
{
    wchar_t deviceName[kDeviceNameUnits]; ///< offset 0: device object, terminated
    ULONG offset;                         ///< offset 100
    ULONG length;                         ///< offset 104: bytes
    BYTE data[1];                         ///< offset 108: on write
    BYTE rounding[3];                     ///< offset 109
};
static_assert(sizeof(PciConfigRecord) == 112 && offsetof(PciConfigRecord, offset) == 100 &&
              offsetof(PciConfigRecord, length) == 104 && offsetof(PciConfigRecord, data) == 108);

/// An access to an I/O port.
struct PortRecord
{
    USHORT port;      ///< offset 0
    USHORT size;      ///< offset 2: bytes
    ULONG sizeWide;   ///< offset 4: the same again
    BYTE data[1];     ///< offset 8: on write
    BYTE rounding[3]; ///< offset 9
};
static_assert(sizeof(PortRecord) == 12 && offsetof(PortRecord, size) == 2 &&
              offsetof(PortRecord, sizeWide) == 4 && offsetof(PortRecord, data) == 8);

/// A stretch of physical memory to be mapped.
struct MapMemoryInput
{
    ULONG physicalAddress; ///< offset 0
    ULONG addressHigh;     ///< offset 4: 0
    ULONG length;          ///< offset 8: bytes
    ULONG reserved;        ///< offset 12: 0
};
static_assert(sizeof(MapMemoryInput) == 16 && offsetof(MapMemoryInput, length) == 8);

/// A mapped stretch, as the driver hands it out and wants it back.
struct MappingDescriptor
{
    ULONG mappedAddress[2]; ///< offset 0: eight bytes that only the driver can read
    ULONG length;           ///< offset 8: bytes
    ULONG reserved;         ///< offset 12: 0
};
static_assert(sizeof(MappingDescriptor) == 16 && offsetof(MappingDescriptor, length) == 8);

/// An access to mapped memory, from the start of the mapping.
struct MemoryRecord
{
    ULONG mappedAddress[2]; ///< offset 0: from the descriptor
    ULONG length;           ///< offset 8: bytes
    BYTE data[1];           ///< offset 12: on write; zeros on read, with the rounding
    BYTE rounding[3];       ///< offset 13
};
static_assert(sizeof(MemoryRecord) == 16 && offsetof(MemoryRecord, length) == 8 &&
              offsetof(MemoryRecord, data) == 12);

/// Asks for a property of a device object.
struct DevicePropertyInput
{
    ULONG property;                       ///< offset 0: a `DEVICE_REGISTRY_PROPERTY`
    wchar_t deviceName[kDeviceNameUnits]; ///< offset 4: terminated
};
static_assert(sizeof(DevicePropertyInput) == 104 && offsetof(DevicePropertyInput, deviceName) == 4);

/// The properties in use.
constexpr ULONG kDevicePropertyBusNumber = 14;
constexpr ULONG kDevicePropertyAddress = 16; ///< PCI: device in bits 31..16, function in bits 15..0

/// Which message of a call carries the data bytes.
enum class DataIn
{
    Neither,
    Input,
    Output
};

/// The sizes of one I/O control, in bytes. In the message that carries data its bytes come on top.
struct DriverControl
{
    DriverFunction function;
    DWORD inputSize;
    DWORD outputSize;
    DataIn data;
};

// The rows stand in the order of the functions, so that a function's number is its row.
constexpr DriverControl kDriverControls[] = {
    {DriverFunction::ExecControlMethod, sizeof(ControlMethodInput), 0, DataIn::Output},
    {DriverFunction::ReadMsr, sizeof(ULONG), sizeof(MsrRecord), DataIn::Neither},
    {DriverFunction::WriteMsr, sizeof(MsrRecord), 0, DataIn::Neither},
    {DriverFunction::ReadPciConfig, sizeof(PciConfigRecord), 0, DataIn::Output},
    {DriverFunction::WritePciConfig, sizeof(PciConfigRecord) - 1, 0, DataIn::Input},
    {DriverFunction::ReadPort, sizeof(PortRecord), 0, DataIn::Output},
    {DriverFunction::WritePort, sizeof(PortRecord) - 1, 0, DataIn::Input},
    {DriverFunction::MapMemory, sizeof(MapMemoryInput), sizeof(MappingDescriptor), DataIn::Neither},
    {DriverFunction::UnmapMemory, sizeof(MappingDescriptor), 0, DataIn::Neither},
    {DriverFunction::ReadMemory, sizeof(MemoryRecord), 0, DataIn::Output},
    {DriverFunction::WriteMemory, sizeof(MemoryRecord) - 1, 0, DataIn::Input},
    {DriverFunction::GetDeviceProperty, sizeof(DevicePropertyInput), 0, DataIn::Output},
};
static_assert(std::size(kDriverControls) == static_cast<std::size_t>(DriverFunction::Count));
static_assert(
    []
    {
        std::size_t row = 0;
        for (const DriverControl& control : kDriverControls)
        {
            if (static_cast<std::size_t>(control.function) != row++)
            {
                return false;
            }
        }
        return true;
    }());
