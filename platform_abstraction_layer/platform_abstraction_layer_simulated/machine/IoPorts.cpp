// machine/IoPorts.cpp
//
// I/O ports in machine.ini. Known difference: a real port that nothing answers on reads as ones; here an
// access to it is refused, so that a wrong port number doesn't pass for hardware.

#include "base/HexText.h"
#include "machine/Chipset.h"
#include "machine/Machine.h"

namespace simulated
{

namespace
{

constexpr const char* kPorts = "Ports";

std::string PortKey(DWORD port)
{
    return ToHex(port, 4);
}

} // namespace

std::optional<DWORD> IoPorts::Read(DWORD port, unsigned size)
{
    DWORD value = 0;
    for (unsigned index = 0; index < size; ++index)
    {
        const auto byte = ParseNumber(Machine::Read(kPorts, PortKey(port + index), {}));
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

} // namespace simulated
