// base/Clock.h
//
// The time of the notebook, as this process sees it. It runs with the real time until it is made instant;
// then every sleep is skipped. Each process on a notebook has its own time.
#pragma once

#include <windef.h>

namespace simulated
{

class Clock
{
public:
    /// Instant: Sleep returns at once and moves the time on. `SIM_CLOCK=instant` in the environment does the
    /// same from the start.
    static void SetInstant(bool on) noexcept;
    static bool IsInstant() noexcept;

    /// Milliseconds since the machine was started.
    static std::uint64_t Now() noexcept;

    /// Moves the time on by `milliseconds` without waiting.
    static void Advance(std::uint64_t milliseconds) noexcept;

    /// Waits, or moves the time on when the clock is instant.
    static void Sleep(std::uint64_t milliseconds) noexcept;

    /// How long a wait with the time-out `milliseconds` really lasts before it gives up: all of it, or when
    /// the clock is instant a twentieth, but from a tenth of a second to a second. Other threads and
    /// processes need that grace to do what the wait is for.
    static std::uint64_t Grace(std::uint64_t milliseconds) noexcept;
};

} // namespace simulated
