// machine/PciBus.cpp
//
// PCI functions in machine.ini. Known difference: of the read-only registers only those that identify the
// function are kept from being written; the rest of configuration space takes every byte.

#include "base/HexText.h"
#include "base/Text.h"
#include "machine/Chipset.h"
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
using Row = std::array<BYTE, kRowSize>;

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

std::string RowKey(DWORD offset)
{
    return ToHex(offset, 2);
}

Row ReadRow(const std::string& section, DWORD offset)
{
    Row row = {};
    const auto bytes = ParseBytes(Machine::Read(section, RowKey(offset), {}));
    if (bytes)
    {
        std::copy_n(bytes->begin(), std::min<std::size_t>(bytes->size(), row.size()), row.begin());
    }
    return row;
}

// Vendor and device, revision and class, header type.
bool IsIdentification(DWORD offset)
{
    return offset < 4 || (offset >= 8 && offset < 12) || offset == 14;
}

// Calls `change` with each byte of configuration space from `offset` on and the byte that is meant for it.
template <class Change>
void ChangeBytes(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes, Change change)
{
    const std::string section = PciSection(address);
    const DWORD end = offset + static_cast<DWORD>(bytes.size());
    for (DWORD rowBegin = offset / kRowSize * kRowSize; rowBegin < end; rowBegin += kRowSize)
    {
        Row row = ReadRow(section, rowBegin);
        for (DWORD place = std::max(offset, rowBegin); place < std::min(end, rowBegin + kRowSize); ++place)
        {
            change(place, row[place - rowBegin], bytes[place - offset]);
        }
        Machine::Write(section, RowKey(rowBegin), ToBytes(row));
    }
}

bool Fits(DWORD offset, std::size_t size)
{
    return offset <= PciBus::kConfigurationSize && size <= PciBus::kConfigurationSize - offset;
}

} // namespace

std::string PciBus::ObjectName(unsigned object)
{
    char name[40];
    std::snprintf(name, sizeof name, "\\Device\\NTPNP_PCI%04u", object);
    return name;
}

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
    Machine::Write(kObjects, ObjectName(object), text);
}

std::optional<PciAddress> PciBus::Find(std::string_view objectName)
{
    const std::optional<std::string> text = Machine::Read(kObjects, objectName);
    return text ? ParseAddress(*text) : std::nullopt;
}

DWORD PciBus::Read(const PciAddress& address, DWORD offset, std::span<BYTE> bytes)
{
    if (offset >= kConfigurationSize)
    {
        return 0;
    }
    const std::string section = PciSection(address);
    const DWORD size = static_cast<DWORD>(std::min<std::size_t>(bytes.size(), kConfigurationSize - offset));
    Row row = {};
    for (DWORD index = 0; index < size; ++index)
    {
        const DWORD place = offset + index;
        if (index == 0 || place % kRowSize == 0)
        {
            row = ReadRow(section, place / kRowSize * kRowSize);
        }
        bytes[index] = row[place % kRowSize];
    }
    return size;
}

bool PciBus::Write(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes)
{
    if (!Fits(offset, bytes.size()))
    {
        return false;
    }
    ChangeBytes(address, offset, bytes,
                [](DWORD place, BYTE& target, BYTE source)
                {
                    if (!IsIdentification(place))
                    {
                        target = source;
                    }
                });
    return true;
}

void PciBus::Set(const PciAddress& address, DWORD offset, std::span<const BYTE> bytes)
{
    if (Fits(offset, bytes.size()))
    {
        ChangeBytes(address, offset, bytes, [](DWORD, BYTE& target, BYTE source) { target = source; });
    }
}

} // namespace simulated
