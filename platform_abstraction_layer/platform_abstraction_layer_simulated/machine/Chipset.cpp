// machine/Chipset.cpp
//
// PCI functions, I/O ports and registers in physical memory, in machine.ini. Known differences: of the
// read-only registers of PCI functions only those that identify the function are protected; the
// rest of configuration space is writable. A real port without hardware reads as ones; here an
// access to it is refused, so that a wrong port number doesn't pass for hardware. Outside the ranges there is
// nothing to map, while real memory can be mapped anywhere.

#include "machine/Chipset.h"

#include "base/HexText.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace simulated
{

namespace
{

constexpr const char* kObjects = "PciObjects";
constexpr DWORD kRowSize = 16;
using Space = std::array<BYTE, PciBus::kConfigurationSize>;

std::string ToText(const PciAddress& address)
{
    char text[32];
    std::snprintf(text, sizeof text, "%02X:%02X.%X", address.bus, address.device, address.function);
    return text;
}

std::optional<PciAddress> ParseAddress(const std::string& text)
{
    PciAddress address = {};
    int length = 0;
    const int fields =
        std::sscanf(text.c_str(), "%x:%x.%x%n", &address.bus, &address.device, &address.function, &length);
    return fields == 3 && static_cast<std::size_t>(length) == text.size() ? std::optional(address)
                                                                          : std::nullopt;
}

std::string PciSection(const PciAddress& address)
{
    return "Pci " + ToText(address);
}

Space ReadSpace(const PciAddress& address)
{
    Space space = {};
    for (DWORD row = 0; row < space.size(); row += kRowSize)
    {
        const auto bytes = ParseBytes(Machine::Read(PciSection(address), ToHex(row, 2), {}));
        if (bytes)
        {
            std::copy_n(bytes->begin(), std::min<std::size_t>(bytes->size(), kRowSize), &space[row]);
        }
    }
    return space;
}

// Writes the rows that hold the `size` bytes from `offset` on.
void WriteRows(const PciAddress& address, const Space& space, DWORD offset, std::size_t size)
{
    Machine::Entries rows;
    for (DWORD row = offset / kRowSize * kRowSize; row < offset + size; row += kRowSize)
    {
        rows.emplace_back(ToHex(row, 2), ToBytes(std::span(space).subspan(row, kRowSize)));
    }
    Machine::Write(PciSection(address), rows);
}

// Vendor and device, revision and class, header type.
bool IsIdentification(DWORD offset)
{
    return offset < 4 || (offset >= 8 && offset < 12) || offset == 14;
}

constexpr const char* kPorts = "Ports";

std::string PortKey(DWORD port)
{
    return ToHex(port, 4);
}

constexpr const char* kRanges = "MemoryRanges";
constexpr const char* kWords = "Memory";
constexpr DWORD kWordSize = sizeof(DWORD);

std::string AddressText(DWORD address)
{
    return ToHex(address, 8);
}

DWORD AlignedWord(DWORD address)
{
    return static_cast<DWORD>(Machine::ReadNumber(kWords, AddressText(address), 0));
}

unsigned ShiftOf(DWORD address)
{
    return 8 * (address % kWordSize);
}

} // namespace

void PciBus::Add(unsigned object, const PciAddress& address, WORD vendor, WORD device)
{
    const BYTE identity[] = {LOBYTE(vendor), HIBYTE(vendor), LOBYTE(device), HIBYTE(device)};
    Set(address, 0, identity);
    Move(object, address);
}

void PciBus::Move(unsigned object, const PciAddress& address)
{
    const std::string text = ToText(address);
    for (const std::string& other : Machine::Keys(kObjects))
    {
        if (EqualIgnoringCase(Machine::Read(kObjects, other, {}), text))
        {
            Machine::Remove(kObjects, other);
        }
    }
    char name[40];
    std::snprintf(name, sizeof name, "\\Device\\NTPNP_PCI%04u", object);
    Machine::Write(kObjects, name, text);
}

std::optional<PciAddress> PciBus::Find(std::string_view objectName)
{
    return ParseAddress(Machine::Read(kObjects, objectName, ""));
}

DWORD PciBus::Read(const PciAddress& address, DWORD offset, std::span<BYTE> bytes)
{
    const DWORD begin = std::min(offset, kConfigurationSize);
    const auto size = std::min<std::size_t>(bytes.size(), kConfigurationSize - begin);
    std::copy_n(ReadSpace(address).begin() + begin, size, bytes.begin());
    return static_cast<DWORD>(size);
}

bool PciBus::Write(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes)
{
    if (offset > kConfigurationSize || bytes.size() > kConfigurationSize - offset)
    {
        return false;
    }
    Space space = ReadSpace(address);
    for (DWORD index = 0; index < bytes.size(); ++index)
    {
        BYTE& target = space[offset + index];
        target = IsIdentification(offset + index) ? target : bytes[index];
    }
    WriteRows(address, space, offset, bytes.size());
    return true;
}

void PciBus::Set(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes)
{
    Space space = ReadSpace(address);
    std::copy(bytes.begin(), bytes.end(), space.begin() + offset);
    WriteRows(address, space, offset, bytes.size());
}

std::optional<DWORD> IoPorts::Read(DWORD port, unsigned size)
{
    DWORD value = 0;
    for (unsigned index = 0; index < size; ++index)
    {
        const auto byte = Machine::ReadNumber(kPorts, PortKey(port + index));
        if (!byte)
        {
            return std::nullopt;
        }
        value |= static_cast<DWORD>(*byte & 0xFF) << (8 * index);
    }
    return value;
}

bool IoPorts::Write(DWORD port, unsigned size, DWORD value)
{
    if (!Read(port, size))
    {
        return false;
    }
    Set(port, size, value);
    return true;
}

void IoPorts::Set(DWORD port, unsigned size, DWORD value)
{
    Machine::Entries bytes;
    for (unsigned index = 0; index < size; ++index)
    {
        bytes.emplace_back(PortKey(port + index), ToHex((value >> (8 * index)) & 0xFF, 2));
    }
    Machine::Write(kPorts, bytes);
}

void PhysicalMemory::AddRange(DWORD address, DWORD length)
{
    Machine::Write(kRanges, AddressText(address), AddressText(length));
}

bool PhysicalMemory::IsThere(DWORD address, DWORD length)
{
    const std::vector<std::string> ranges = Machine::Keys(kRanges);
    return std::any_of(ranges.begin(), ranges.end(),
                       [&](const std::string& range)
                       {
                           const std::uint64_t begin = ParseNumber(range).value_or(0);
                           const std::uint64_t size = Machine::ReadNumber(kRanges, range, 0);
                           return address >= begin && std::uint64_t{address} + length <= begin + size;
                       });
}

void PhysicalMemory::Read(DWORD address, std::span<BYTE> bytes)
{
    for (BYTE& byte : bytes)
    {
        byte = static_cast<BYTE>(AlignedWord(address - address % kWordSize) >> ShiftOf(address));
        ++address;
    }
}

void PhysicalMemory::Write(DWORD address, std::span<const BYTE> bytes)
{
    const BYTE* source = bytes.data();
    const BYTE* const end = source + bytes.size();
    while (source != end)
    {
        const DWORD word = address - address % kWordSize;
        DWORD value = AlignedWord(word);
        do
        {
            const unsigned shift = ShiftOf(address++);
            value = (value & ~(DWORD{0xFF} << shift)) | (DWORD{*source++} << shift);
        } while (source != end && address % kWordSize != 0);
        Machine::Write(kWords, AddressText(word), AddressText(value));
    }
}

DWORD PhysicalMemory::Word(DWORD address)
{
    DWORD word = 0;
    Read(address, {reinterpret_cast<BYTE*>(&word), kWordSize});
    return word;
}

void PhysicalMemory::SetWord(DWORD address, DWORD value)
{
    Write(address, {reinterpret_cast<const BYTE*>(&value), kWordSize});
}

} // namespace simulated
