// plugin/RequestLock.cpp
//
// A critical section that knows who holds it, and how often.

#include "plugin/RequestLock.h"

#include <atomic>

namespace request_lock
{

namespace
{

CRITICAL_SECTION section;

// Only a thread that finds its own number here may rely on it; no thread has the number 0.
std::atomic<DWORD> holder{0};

// Belongs to the holder.
unsigned depth = 0;

void Enter() noexcept
{
    EnterCriticalSection(&section);
    if (depth++ == 0)
    {
        holder = GetCurrentThreadId();
    }
}

void Leave() noexcept
{
    if (--depth == 0)
    {
        holder = 0;
    }
    LeaveCriticalSection(&section);
}

} // namespace

void SetUp() noexcept
{
    InitializeCriticalSection(&section);
}

void TearDown() noexcept
{
    DeleteCriticalSection(&section);
}

Scope::Scope() noexcept
{
    Enter();
}

Scope::~Scope()
{
    Leave();
}

Pause::Pause() noexcept : m_depth(holder == GetCurrentThreadId() ? depth : 0)
{
    for (unsigned level = 0; level < m_depth; ++level)
    {
        Leave();
    }
}

Pause::~Pause()
{
    for (unsigned level = 0; level < m_depth; ++level)
    {
        Enter();
    }
}

} // namespace request_lock
