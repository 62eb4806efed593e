// base/ChangeCount.cpp
//
// The word in the file "objects/.changes" of the notebook, mapped by every process.

#include "base/ChangeCount.h"

#include "base/SharedPages.h"

#include <atomic>
#include <fcntl.h>
#include <mutex>

namespace simulated
{

namespace
{

using Word = std::atomic<std::uint32_t>;
static_assert(Word::is_always_lock_free);

constexpr auto kPatience = std::chrono::milliseconds(1);
constexpr std::uint64_t kOneNotebook = std::uint64_t{1} << 32;

struct State
{
    std::mutex mutex;
    std::string path;
    SharedPages pages;
    std::uint64_t begin = 0; ///< what the notebook's own count is added to
};

// Never destroyed: threads may outlive the library's teardown.
State& TheState()
{
    static State& state = *new State;
    return state;
}

// The notebook's word, or null where there is none; the mutex is held.
Word* FindWord(State& state)
{
    if (state.pages.Address() == nullptr && !state.path.empty())
    {
        const Descriptor file(open(state.path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
        if (file.IsOpen() && ftruncate(file.Get(), kPageSize) == 0)
        {
            state.pages = SharedPages(file.Get(), kPageSize, true);
        }
    }
    return static_cast<Word*>(state.pages.Address());
}

} // namespace

void ChangeCount::Use(const std::string& folder)
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.path = folder + "/objects/.changes";
    state.pages = SharedPages();
    state.begin += kOneNotebook;
}

std::uint64_t ChangeCount::Value()
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    const Word* const word = FindWord(state);
    state.begin += word == nullptr ? kOneNotebook : 0;
    return state.begin + (word == nullptr ? 0 : word->load(std::memory_order_acquire));
}

void ChangeCount::Announce()
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    if (Word* const word = FindWord(state))
    {
        word->fetch_add(1, std::memory_order_acq_rel);
    }
}

bool LastLook::IsCurrent() const
{
    return m_count == ChangeCount::Value() && std::chrono::steady_clock::now() - m_time < kPatience;
}

void LastLook::Begin()
{
    m_count = ChangeCount::Value();
    m_time = std::chrono::steady_clock::now();
}

} // namespace simulated
