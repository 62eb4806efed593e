// modules/kernel32/Threads.h
//
// Threads of the simulated machine: how they start and end, and what is kept of each.
#pragma once

#include "modules/kernel32/Waits.h"

#include <winbase.h>

#include <atomic>
#include <memory>

namespace simulated
{

/// What is kept of a thread as long as it runs or has a handle.
struct ThreadState
{
    static DWORD NextId() noexcept;

    DWORD id = NextId();
    std::shared_ptr<WakeWord> wake = WakeWord::Current();
    std::atomic<bool> ended{false};
    std::atomic<DWORD_PTR> affinity{0}; ///< 0 until it is set: all cores of the process
};

/// The calling thread's state, also when CreateThread didn't make the thread.
ThreadState& CurrentThreadState();

class Thread final : public Waitable
{
public:
    explicit Thread(std::shared_ptr<ThreadState> state);

    ThreadState& State() const noexcept
    {
        return *m_state;
    }

    WakeWord& Wake() const noexcept override
    {
        return *m_state->wake;
    }

    bool TryTake(std::uint32_t begun) noexcept override;

private:
    std::shared_ptr<ThreadState> m_state;
};

} // namespace simulated
