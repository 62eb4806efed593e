// machine/Processor.cpp
//
// Model-specific registers in machine.ini. Known difference: a change of performance control shows in
// performance status at once, not when the voltage has settled.

#include "machine/Processor.h"

#include "base/HexText.h"
#include "machine/Machine.h"

#include <winerror.h>

#include <algorithm>

namespace simulated
{

namespace
{

std::string CoreSection(unsigned core)
{
    return "Core " + std::to_string(core);
}

// A register as a line of its core's section.
std::pair<std::string, std::string> Line(DWORD index, std::uint64_t value)
{
    return {ToHex(index, 3), ToHex(value, 16)};
}

// Ratios and voltages lie at the same places in the registers' low and high halves.
constexpr std::uint64_t kVidMask = 0x3F;
constexpr unsigned kRatioShift = 8;
constexpr unsigned kLowestRatioShift = 24;
constexpr unsigned kHalf = 32;
constexpr std::uint64_t kRatioMask = 0x1F;

// Performance status after `control` was written: it runs at the nearest ratio that it can.
std::uint64_t StatusAfter(std::uint64_t status, std::uint64_t control)
{
    const std::uint64_t lowest = (status >> kLowestRatioShift) & kRatioMask;
    const std::uint64_t highest = (status >> (kHalf + kRatioShift)) & kRatioMask;
    const std::uint64_t wanted = (control >> kRatioShift) & kRatioMask;
    const std::uint64_t ratio = std::min(std::max(wanted, lowest), std::max(lowest, highest));
    const std::uint64_t vid = control & kVidMask;
    return (status & ~std::uint64_t{0xFFFF}) | (ratio << kRatioShift) | vid;
}

} // namespace

std::optional<std::uint64_t> Processor::Read(unsigned core, DWORD index)
{
    return Machine::ReadNumber(CoreSection(core), ToHex(index, 3));
}

void Processor::Set(unsigned core, DWORD index, std::uint64_t value)
{
    Machine::Write(CoreSection(core), {Line(index, value)});
}

DWORD Processor::Write(unsigned core, DWORD index, std::uint64_t value)
{
    if (!Read(core, index))
    {
        return ERROR_FILE_NOT_FOUND;
    }
    if (index == kPerformanceStatus)
    {
        return ERROR_ACCESS_DENIED;
    }
    Machine::Entries registers = {Line(index, value)};
    const std::optional<std::uint64_t> status = Read(core, kPerformanceStatus);
    if (index == kPerformanceControl && status)
    {
        registers.push_back(Line(kPerformanceStatus, StatusAfter(*status, value)));
    }
    Machine::Write(CoreSection(core), registers);
    return ERROR_SUCCESS;
}

void Processor::Fit(unsigned cores, const Limits& limits)
{
    const std::uint64_t highest = (limits.highestRatio << kRatioShift) | limits.highestVid;
    for (unsigned core = 0; core < cores; ++core)
    {
        const std::uint64_t status =
            (highest << kHalf) | (std::uint64_t{limits.lowestRatio} << kLowestRatioShift) | highest;
        Machine::Write(CoreSection(core),
                       {Line(kPerformanceStatus, status), Line(kPerformanceControl, highest),
                        Line(kClockModulation, 0), Line(kThermalControl, limits.lowestVid)});
    }
    Machine::WriteNumber("Processor", "Cores", cores);
}

} // namespace simulated
