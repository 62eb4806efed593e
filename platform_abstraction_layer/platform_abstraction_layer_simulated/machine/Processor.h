// machine/Processor.h
//
// The model-specific registers of each core. machine.ini, a section "Core 0" and so on for each core, with a
// line for each register that the processor has: "0x198=0x00000C1506000C15". The number of cores stands
// in section "Processor" (kernel32/Affinity.h).
#pragma once

#include <windef.h>

#include <optional>

namespace simulated
{

class Processor
{
public:
    static constexpr DWORD kPerformanceStatus = 0x198;
    static constexpr DWORD kPerformanceControl = 0x199;
    static constexpr DWORD kClockModulation = 0x19A;
    static constexpr DWORD kThermalControl = 0x19D;

    /// The ratios and voltages that the registers give.
    struct Limits
    {
        DWORD lowestRatio;
        DWORD highestRatio;
        DWORD lowestVid;  ///< at the lowest ratio
        DWORD highestVid; ///< at the highest ratio
    };

    /// A register's 64 bits, or nothing when the core has no such register.
    static std::optional<std::uint64_t> Read(unsigned core, DWORD index);

    /// Sets the bits whatever the register is for, and makes the register when there was none.
    static void Set(unsigned core, DWORD index, std::uint64_t value);

    /// Writes as an instruction does: performance control changes the present ratio and voltage that
    /// performance status reports, and performance status itself is read-only. Returns an error number.
    static DWORD Write(unsigned core, DWORD index, std::uint64_t value);

    /// Gives every core the four registers, running at the highest ratio without modulation.
    static void Fit(unsigned cores, const Limits& limits);
};

} // namespace simulated
