// modules/kernel32/CriticalSections.cpp
//
// Critical sections: recursive locks within one process, each a native mutex. It lies in a block of its own,
// so that a section which is never deleted shows as a leak. They aren't traced as platform calls: as on
// Windows they don't leave the process, and a trace of every lock would hide what matters.
//
// Known differences from Windows: leaving a section that the thread doesn't own, which corrupts it there,
// ends the process with a message here.

#include <windows.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <pthread.h>
#include <utility>

namespace
{

// All zeros in a section that nobody has initialised.
pthread_mutex_t*& MutexOf(CRITICAL_SECTION* section) noexcept
{
    static_assert(sizeof(pthread_mutex_t*) <= sizeof(CRITICAL_SECTION));
    static_assert(alignof(pthread_mutex_t*) <= alignof(CRITICAL_SECTION));
    return *std::launder(reinterpret_cast<pthread_mutex_t**>(section->opaque));
}

void Require(int result, const char* function) noexcept
{
    if (result != 0)
    {
        std::fprintf(stderr, "%s: the critical section isn't in a state for this (%d)\n", function, result);
        std::abort();
    }
}

} // namespace

SIM_API void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section)
{
    auto* const mutex = new pthread_mutex_t;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    const int result = pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    Require(result, "InitializeCriticalSection");
    new (section->opaque) pthread_mutex_t*(mutex);
}

SIM_API void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_t* const mutex = MutexOf(section);
    Require(mutex == nullptr ? EINVAL : pthread_mutex_lock(mutex), "EnterCriticalSection");
}

SIM_API BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION section)
{
    return pthread_mutex_trylock(MutexOf(section)) == 0 ? TRUE : FALSE;
}

SIM_API void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section)
{
    Require(pthread_mutex_unlock(MutexOf(section)), "LeaveCriticalSection");
}

SIM_API void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section)
{
    pthread_mutex_t*& mutex = MutexOf(section);
    Require(pthread_mutex_destroy(mutex), "DeleteCriticalSection");
    delete std::exchange(mutex, nullptr);
}
