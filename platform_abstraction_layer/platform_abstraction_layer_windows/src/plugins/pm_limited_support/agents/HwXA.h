// agents/HwXA.h
//
// Typed access to the hardware over the driver channel: registers of the processor, ports, physical memory
// and PCI configuration space, and the name of the device object behind a PCI address.
#pragma once

#include "foundation/OrvlBase.h"

/// `Setup`, any accesses, `Cleanup` or destruction. Operations give 0, the channel's error or 0x80004005
/// for bad arguments and for an object that isn't set up.
class ORVL_API CHwXA : public CORVLBase
{
public:
    CHwXA() noexcept;
    CHwXA(const CHwXA&) noexcept;
    CHwXA& operator=(const CHwXA&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CHwXA() override;

    /// Opens the channel. 0, 1 when that was done before, or the translated error.
    [[nodiscard]] LONG Setup() noexcept;
    void Cleanup() noexcept;

    [[nodiscard]] LONG ReadMSR(ULONG index, unsigned __int64* value) noexcept;
    [[nodiscard]] LONG WriteMSR(ULONG index, unsigned __int64* value) noexcept;

    /// `port` is cut to 16 bits; the driver judges `size` on reading, which is 1, 2 or 4 bytes on writing.
    [[nodiscard]] LONG ReadIoPort(ULONG port, void* buffer, USHORT size) noexcept;
    [[nodiscard]] LONG WriteIoPort(ULONG port, void* buffer, USHORT size) noexcept;

    /// Maps `length` bytes and gives a handle that `UnmapMemorySpace` takes back.
    [[nodiscard]] LONG MapMemorySpace(void* physicalAddress, ULONG length, void** mapping) noexcept;

    /// The handle is gone afterwards, whatever the driver answers.
    LONG UnmapMemorySpace(void* mapping) noexcept;

    /// Both work from the start of the mapping.
    [[nodiscard]] LONG ReadMemory(void* mapping, void* buffer, ULONG length) noexcept;
    [[nodiscard]] LONG WriteMemory(void* mapping, void* buffer, ULONG length) noexcept;

    /// `deviceName` has at most 49 characters and comes from `GetDeviceName`.
    [[nodiscard]] LONG ReadPCIConfig(const wchar_t* deviceName, ULONG offset, void* buffer,
                                     ULONG length) noexcept;
    [[nodiscard]] LONG WritePCIConfig(const wchar_t* deviceName, ULONG offset, void* buffer,
                                      ULONG length) noexcept;

    /// A property of a device object. Every refusal is 0x80004005 here.
    [[nodiscard]] LONG GetDeviceProperty(ULONG property, wchar_t* deviceName, void* buffer,
                                         ULONG size) noexcept;

    /// The device object behind a PCI address, among the first 32. `capacity`, in characters, is above 50.
    [[nodiscard]] LONG GetDeviceName(ULONG bus, ULONG device, ULONG function, wchar_t* name,
                                     ULONG capacity) noexcept;

protected:
    /// Asks all 32 device objects anew. An object that doesn't exist loses its place in the table; on any
    /// other failure the entry stays as it is. Always 0.
    LONG InitDevicePropTable() noexcept;

    bool m_bDriverSetUp = false;
};
