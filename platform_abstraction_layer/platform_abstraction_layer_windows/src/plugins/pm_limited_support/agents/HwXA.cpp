// agents/HwXA.cpp
//
// Builds the driver's records and keeps the table that turns PCI addresses into device objects.

#include "agents/HwXA.h"

#include "agents/DriverCall.h"
#include "foundation/Log.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"
#include "foundation/Text.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace
{

// A PCI function and the device object that stands for it.
struct DeviceProperties
{
    wchar_t name[kDeviceNameUnits];
    ULONG bus;
    ULONG device;
    ULONG function;
    bool isPresent; ///< its numbers were read, and its object hasn't been found missing since
};

// Shared by all objects and never locked. Nothing is present at first.
DeviceProperties deviceTable[32];

const DeviceProperties* FindDevice(ULONG bus, ULONG device, ULONG function) noexcept
{
    const auto* found = std::find_if(std::begin(deviceTable), std::end(deviceTable),
                                     [=](const DeviceProperties& entry) {
                                         return entry.isPresent && entry.bus == bus &&
                                                entry.device == device && entry.function == function;
                                     });
    return found == std::end(deviceTable) ? nullptr : found;
}

// False, with a line in the log, for a name that a record has no room for.
bool IsDeviceNameShort(const wchar_t* deviceName) noexcept
{
    return Check(text::Length(deviceName, kDeviceNameUnits) < kDeviceNameUnits,
                 L"The device name is too long");
}

// False, with a line in the log, when the object isn't set up.
bool IsUsable(bool driverSetUp) noexcept
{
    return Check(driverSetUp, L"The handle of the device doesn't exist.");
}

// False, with a line in the log, when a pointer is null or there is nothing to transfer.
bool AreUsable(const void* what, const void* buffer, ULONG length) noexcept
{
    return Check(what != nullptr && buffer != nullptr && length != 0, L"Invalidate parameters.");
}

// Passes `result` on and logs a failure.
LONG Report(const wchar_t* failureText, LONG result) noexcept
{
    if (result < 0)
    {
        CORVLBase::DBGOUT(failureText, result);
    }
    return result;
}

// Sends a record with data: its bytes take the place of the one byte that the record counts for them.
template <class Record>
LONG SendData(DriverFunction function, const Record& record, const void* data, ULONG length,
              const wchar_t* failureText) noexcept
{
    // Without the test a length that no message can have would wrap.
    const owners::HeapBlock message = length > (std::numeric_limits<ULONG>::max)() - sizeof record
                                          ? owners::HeapBlock()
                                          : owners::AllocateBlock(sizeof record - 1 + length);
    if (!message)
    {
        return kGeneralFailure;
    }
    std::memcpy(message.Get(), &record, offsetof(Record, data));
    std::memcpy(static_cast<BYTE*>(message.Get()) + offsetof(Record, data), data, length);
    return Report(failureText, CallDriver(function, message.Get(), nullptr, length));
}

PciConfigRecord PciConfigRecordFor(const wchar_t* deviceName, ULONG offset, ULONG length) noexcept
{
    PciConfigRecord record = {};
    text::Copy(record.deviceName, deviceName);
    record.offset = offset;
    record.length = length;
    return record;
}

MemoryRecord MemoryRecordFor(const void* mapping, ULONG length) noexcept
{
    MemoryRecord record = {};
    std::memcpy(&record, mapping, sizeof record.mappedAddress);
    record.length = length;
    return record;
}

// Reads a property of a device object and gives the driver's own result.
LONG ReadProperty(ULONG property, const wchar_t* deviceName, void* buffer, ULONG size) noexcept
{
    DevicePropertyInput input = {};
    input.property = property;
    text::Copy(input.deviceName, deviceName);
    return Report(L"IOCTL_GET_DEVICE_PROPERTY failed for 0x%x\n",
                  CallDriver(DriverFunction::GetDeviceProperty, &input, buffer, size));
}

// Reads an entry's numbers anew. Only a missing object clears the entry: a busy channel or a failing driver
// says nothing about the object.
void Refresh(DeviceProperties& entry) noexcept
{
    constexpr LONG kNoSuchObject = ResultFromWin32(ERROR_FILE_NOT_FOUND);
    ULONG bus = 0;
    ULONG address = 0;
    LONG read = ReadProperty(kDevicePropertyBusNumber, entry.name, &bus, sizeof bus);
    if (read >= 0)
    {
        read = ReadProperty(kDevicePropertyAddress, entry.name, &address, sizeof address);
    }
    if (read >= 0)
    {
        entry.bus = bus;
        entry.device = HIWORD(address);
        entry.function = LOWORD(address);
        entry.isPresent = true;
    }
    else if (read == kNoSuchObject)
    {
        entry.isPresent = false;
    }
}

} // namespace

CHwXA::CHwXA() noexcept = default;
CHwXA::CHwXA(const CHwXA&) noexcept = default;
CHwXA& CHwXA::operator=(const CHwXA&) noexcept = default;

CHwXA::~CHwXA()
{
    Cleanup();
}

ULONG CHwXA::GetVersion() noexcept
{
    return kClassVersion;
}

LONG CHwXA::Setup() noexcept
{
    return OpenChannel(m_bDriverSetUp);
}

void CHwXA::Cleanup() noexcept
{
    CloseChannel(m_bDriverSetUp);
}

LONG CHwXA::ReadMSR(ULONG index, unsigned __int64* value) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || value == nullptr)
    {
        return kGeneralFailure;
    }
    MsrRecord record;
    if (const LONG read = ReadMsrRecord(index, record); read < 0)
    {
        return Report(L"IOCTL_ORVLEBL_MSR_READ failed for 0x%x\n", read);
    }
    *value = (static_cast<unsigned __int64>(record.high) << 32) | record.low;
    return kSucceeded;
}

LONG CHwXA::WriteMSR(ULONG index, unsigned __int64* value) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || value == nullptr)
    {
        return kGeneralFailure;
    }
    const MsrRecord record = {index, static_cast<ULONG>(*value >> 32), static_cast<ULONG>(*value)};
    return Report(L"IOCTL_ORVLEBL_MSR_WRITE failed for 0x%x\n", WriteMsrRecord(record));
}

LONG CHwXA::ReadIoPort(ULONG port, void* buffer, USHORT size) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || buffer == nullptr)
    {
        return kGeneralFailure;
    }
    const PortRecord record = {static_cast<USHORT>(port), size, size, {}, {}};
    DWORD returned = 0;
    if (const LONG read = CallDriver(DriverFunction::ReadPort, &record, buffer, size, returned); read < 0)
    {
        return Report(L"IOCTL_ORVLEBL_PORT_READ failed for 0x%x\n", read);
    }
    return returned == size ? kSucceeded : kGeneralFailure;
}

LONG CHwXA::WriteIoPort(ULONG port, void* buffer, USHORT size) noexcept
{
    if (!IsUsable(m_bDriverSetUp))
    {
        return kGeneralFailure;
    }
    if (size != 1 && size != 2 && size != 4)
    {
        DBGOUT(L"The uPortSize is invalid %d.", size);
        return kGeneralFailure;
    }
    if (buffer == nullptr)
    {
        return kGeneralFailure;
    }
    const PortRecord record = {static_cast<USHORT>(port), size, size, {}, {}};
    return SendData(DriverFunction::WritePort, record, buffer, size, L"IOCTL_WRITE_PORT failed for 0x%x\n");
}

LONG CHwXA::MapMemorySpace(void* physicalAddress, ULONG length, void** mapping) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(physicalAddress, mapping, length))
    {
        return kGeneralFailure;
    }
    owners::HeapBlock block = owners::AllocateBlock(sizeof(MappingDescriptor));
    if (!block)
    {
        return kGeneralFailure;
    }
    const auto address = static_cast<ULONG>(reinterpret_cast<ULONG_PTR>(physicalAddress));
    const MapMemoryInput input = {address, 0, length, 0};
    if (const LONG mapped = CallDriver(DriverFunction::MapMemory, &input, block.Get(), 0); mapped < 0)
    {
        return Report(L"IOCTL_MAP_MEMORY failed for 0x%x\n", mapped);
    }
    auto* descriptor = static_cast<MappingDescriptor*>(block.Get());
    descriptor->length = length;
    descriptor->reserved = 0;
    *mapping = block.Detach();
    return kSucceeded;
}

LONG CHwXA::UnmapMemorySpace(void* mapping) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(mapping, mapping, sizeof(MappingDescriptor)))
    {
        return kGeneralFailure;
    }
    const MappingDescriptor descriptor = *static_cast<const MappingDescriptor*>(mapping);
    owners::HeapBlock(mapping).Reset();
    return Report(L"IOCTL_UNMAP_MEMEMORY failed for 0x%x\n",
                  CallDriver(DriverFunction::UnmapMemory, &descriptor, nullptr, 0));
}

LONG CHwXA::ReadMemory(void* mapping, void* buffer, ULONG length) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(mapping, buffer, length))
    {
        return kGeneralFailure;
    }
    const MemoryRecord record = MemoryRecordFor(mapping, length);
    return Report(L"IOCTL_READ_MEMORY failed for 0x%x\n",
                  CallDriver(DriverFunction::ReadMemory, &record, buffer, length));
}

LONG CHwXA::WriteMemory(void* mapping, void* buffer, ULONG length) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(mapping, buffer, length))
    {
        return kGeneralFailure;
    }
    return SendData(DriverFunction::WriteMemory, MemoryRecordFor(mapping, length), buffer, length,
                    L"IOCTL_WRITE_MEMORY failed for 0x%x\n");
}

LONG CHwXA::ReadPCIConfig(const wchar_t* deviceName, ULONG offset, void* buffer, ULONG length) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(deviceName, buffer, length) || !IsDeviceNameShort(deviceName))
    {
        return kGeneralFailure;
    }
    const PciConfigRecord record = PciConfigRecordFor(deviceName, offset, length);
    DWORD returned = 0;
    if (const LONG read = CallDriver(DriverFunction::ReadPciConfig, &record, buffer, length, returned);
        read < 0)
    {
        return Report(L"IOCTL_READ_PCI_CONFIG failed for 0x%x\n", read);
    }
    return Check(returned == length, L"IOCTL_READ_PCI_CONFIG failed") ? kSucceeded : kGeneralFailure;
}

LONG CHwXA::WritePCIConfig(const wchar_t* deviceName, ULONG offset, void* buffer, ULONG length) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || !AreUsable(deviceName, buffer, length) || !IsDeviceNameShort(deviceName))
    {
        return kGeneralFailure;
    }
    return SendData(DriverFunction::WritePciConfig, PciConfigRecordFor(deviceName, offset, length), buffer,
                    length, L"pPciCfgBuffer failed for 0x%x");
}

LONG CHwXA::GetDeviceProperty(ULONG property, wchar_t* deviceName, void* buffer, ULONG size) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || deviceName == nullptr || !IsDeviceNameShort(deviceName))
    {
        return kGeneralFailure;
    }
    return ReadProperty(property, deviceName, buffer, size) < 0 ? kGeneralFailure : kSucceeded;
}

LONG CHwXA::InitDevicePropTable() noexcept
{
    int index = 0;
    for (DeviceProperties& entry : deviceTable)
    {
        text::Format(entry.name, L"\\Device\\NTPNP_PCI%04d", index++);
        if (IsUsable(m_bDriverSetUp))
        {
            Refresh(entry);
        }
    }
    return kSucceeded;
}

LONG CHwXA::GetDeviceName(ULONG bus, ULONG device, ULONG function, wchar_t* name, ULONG capacity) noexcept
{
    if (!IsUsable(m_bDriverSetUp) || capacity <= kDeviceNameUnits || name == nullptr)
    {
        return kGeneralFailure;
    }

    // Devices move when one is plugged in or out, so what the table says is only believed when the device
    // object still confirms it.
    const auto isConfirmed = [&](const DeviceProperties& entry)
    {
        ULONG presentBus = 0;
        ULONG address = 0;
        return ReadProperty(kDevicePropertyBusNumber, entry.name, &presentBus, sizeof presentBus) >= 0 &&
               presentBus == bus &&
               ReadProperty(kDevicePropertyAddress, entry.name, &address, sizeof address) >= 0 &&
               address == ((device << 16) | function);
    };
    const DeviceProperties* found = FindDevice(bus, device, function);
    if (found == nullptr || !isConfirmed(*found))
    {
        InitDevicePropTable();
        found = FindDevice(bus, device, function);
    }
    if (found == nullptr)
    {
        return kGeneralFailure;
    }
    text::Copy(name, capacity, found->name);
    return kSucceeded;
}
