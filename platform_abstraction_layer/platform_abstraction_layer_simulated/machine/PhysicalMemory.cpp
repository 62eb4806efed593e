// machine/PhysicalMemory.cpp
//
// Registers in physical memory, in machine.ini. Known difference: outside the ranges there is nothing to map,
// while real memory can be mapped anywhere.

#include "base/HexText.h"
#include "machine/Chipset.h"
#include "machine/Machine.h"

#include <algorithm>

namespace simulated
{

namespace
{

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
    BYTE bytes[kWordSize] = {};
    Read(address, bytes);
    return static_cast<DWORD>(bytes[0] | (bytes[1] << 8) | (bytes[2] << 16)) | (DWORD{bytes[3]} << 24);
}

void PhysicalMemory::SetWord(DWORD address, DWORD value)
{
    const BYTE bytes[kWordSize] = {static_cast<BYTE>(value), static_cast<BYTE>(value >> 8),
                                   static_cast<BYTE>(value >> 16), static_cast<BYTE>(value >> 24)};
    Write(address, bytes);
}

} // namespace simulated
