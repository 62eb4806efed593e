// machine/Chipset.h
//
// What lies behind the processor's bus: PCI functions and the device objects that name them, I/O ports,
// physical memory. A register that machine.ini doesn't have isn't there.
#pragma once

#include <windef.h>

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace simulated
{

/// Where a function sits on the PCI bus.
struct PciAddress
{
    DWORD bus;
    DWORD device;
    DWORD function;

    bool operator==(const PciAddress&) const = default;
};

/// The functions and their configuration space. machine.ini, section "PciObjects", has a line for each device
/// object: "\Device\NTPNP_PCI0003=00:1F.0". Section "Pci 00:1F.0" holds that function's configuration space
/// in rows of 16 bytes, "0xF0=01 C0 D1 FE ..."; rows that are missing are zeros.
class PciBus
{
public:
    static constexpr DWORD kConfigurationSize = 256;

    /// Adds a function: vendor and device number in its configuration space, and the device
    /// object of that number.
    static void Add(unsigned object, const PciAddress& address, WORD vendor, WORD device);

    /// Makes `object` name the function at `address` in place of the object that did so before.
    static void Move(unsigned object, const PciAddress& address);

    /// The function behind a device object, named as the kernel names it.
    static std::optional<PciAddress> Find(std::string_view objectName);

    /// Copies configuration space from `offset` on; the bytes copied, fewer when the space ends before.
    static DWORD Read(const PciAddress& address, DWORD offset, std::span<BYTE> bytes);

    /// Writes as the bus does: what identifies the function stays as it is. False when the space ends before.
    static bool Write(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes);

    /// Sets bytes whatever they are for; the space must have them.
    static void Set(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes);
};

/// The ports, a byte each. machine.ini, section "Ports": "0x00B2=0x00".
class IoPorts
{
public:
    /// `size` bytes from `port` on, the first lowest; nothing when one of the ports isn't there.
    static std::optional<DWORD> Read(DWORD port, unsigned size);
    static bool Write(DWORD port, unsigned size, DWORD value);

    /// Makes the ports when they weren't there.
    static void Set(DWORD port, unsigned size, DWORD value);
};

/// Ranges of registers in physical memory. machine.ini, section "MemoryRanges": "0xFED1C000=0x00004000" is a
/// range and its length; section "Memory": "0xFED1F418=0x00000000" is four bytes in one. Bytes of a range
/// that have no line are zeros.
class PhysicalMemory
{
public:
    static void AddRange(DWORD address, DWORD length);

    /// True when the bytes lie in one range.
    static bool IsThere(DWORD address, DWORD length);

    /// Only for what `IsThere`.
    static void Read(DWORD address, std::span<BYTE> bytes);
    static void Write(DWORD address, std::span<const BYTE> bytes);

    /// The four bytes at `address`, the first lowest.
    static DWORD Word(DWORD address);
    static void SetWord(DWORD address, DWORD value);
};

} // namespace simulated
