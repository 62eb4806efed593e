// modules/kernel32/WakeWord.h
//
// What all waits on a notebook sleep on: a counter, shared by its processes, that every change
// of a kernel object increases. A waiter looks at its objects again whenever it has moved; so a wait on
// several objects, named and unnamed, needs nothing else, and nobody who is killed leaves a queue behind.
#pragma once

#include "base/SharedPages.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace simulated
{

class WakeWord
{
public:
    /// The word of this process's notebook. Without a notebook, one of the process's own.
    static std::shared_ptr<WakeWord> Current();

    /// Use the function above. The word is the first of `pages`.
    explicit WakeWord(SharedPages pages) noexcept : m_pages(std::move(pages))
    {
    }

    /// What stands there now; taken before the objects are looked at.
    std::uint32_t Value() const noexcept;

    /// Lets every waiter look again. Comes after the change.
    void Announce() noexcept;

    /// Sleeps until the word differs from `seen`, at most `milliseconds`; may return early.
    void Sleep(std::uint32_t seen, std::uint64_t milliseconds) noexcept;

private:
    std::atomic<std::uint32_t>& Word() const noexcept
    {
        return *static_cast<std::atomic<std::uint32_t>*>(m_pages.Address());
    }

    SharedPages m_pages;
};

} // namespace simulated
