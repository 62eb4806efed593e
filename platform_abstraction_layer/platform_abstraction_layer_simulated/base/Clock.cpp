// base/Clock.cpp
//
// Real time plus what was skipped.

#include "base/Clock.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace simulated
{

namespace
{

constexpr std::uint64_t kScale = 20;
constexpr std::uint64_t kLeastGrace = 100;
constexpr std::uint64_t kMostGrace = 1000;

bool StartsInstant() noexcept
{
    const char* choice = std::getenv("SIM_CLOCK");
    return choice != nullptr && std::strcmp(choice, "instant") == 0;
}

std::atomic<bool>& Instant() noexcept
{
    static std::atomic<bool> instant{StartsInstant()};
    return instant;
}

std::atomic<std::uint64_t> skipped{0};

} // namespace

void Clock::SetInstant(bool on) noexcept
{
    Instant() = on;
}

bool Clock::IsInstant() noexcept
{
    return Instant();
}

std::uint64_t Clock::Now() noexcept
{
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000 + static_cast<std::uint64_t>(now.tv_nsec) / 1000000 +
           skipped;
}

void Clock::Advance(std::uint64_t milliseconds) noexcept
{
    skipped += milliseconds;
}

void Clock::Sleep(std::uint64_t milliseconds) noexcept
{
    if (IsInstant())
    {
        Advance(milliseconds);
        return;
    }
    timespec left{static_cast<std::time_t>(milliseconds / 1000),
                  static_cast<long>(milliseconds % 1000) * 1000000};
    while (nanosleep(&left, &left) != 0)
    {
    }
}

std::uint64_t Clock::Grace(std::uint64_t milliseconds) noexcept
{
    if (!IsInstant() || milliseconds == 0)
    {
        return milliseconds;
    }
    return std::min(milliseconds, std::clamp(milliseconds / kScale, kLeastGrace, kMostGrace));
}

} // namespace simulated
