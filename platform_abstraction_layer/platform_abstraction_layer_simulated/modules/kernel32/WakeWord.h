// modules/kernel32/WakeWord.h
//
// The one thing that all waits on a notebook sleep on: a counter, shared by its processes, that every change
// of a kernel object increases. A waiter looks at its objects again whenever it has moved; so a wait on
// several objects, named and unnamed, needs nothing else, and nobody who is killed leaves a queue behind.
#pragma once

#include <windef.h>

#include <atomic>
#include <memory>

namespace simulated
{

class WakeWord
{
public:
    /// The word of this process's notebook. Without a notebook, one of the process's own.
    static std::shared_ptr<WakeWord> Current();

    virtual ~WakeWord() = default;
    WakeWord(const WakeWord&) = delete;
    WakeWord& operator=(const WakeWord&) = delete;

    /// What stands there now; taken before the objects are looked at.
    std::uint32_t Value() const noexcept;

    /// Lets every waiter look again. Comes after the change.
    void Announce() noexcept;

    /// Sleeps until the word differs from `seen`, at most `milliseconds`; may return early.
    void Sleep(std::uint32_t seen, std::uint64_t milliseconds) noexcept;

protected:
    explicit WakeWord(std::atomic<std::uint32_t>& word) noexcept : m_word(word)
    {
    }

private:
    std::atomic<std::uint32_t>& m_word;
};

} // namespace simulated
