// service/StopSignal.cpp
//
// The three ways to end the service.

#include "StopSignal.h"

#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <csignal>

namespace service
{

namespace
{

constexpr const wchar_t* kStopEvent = L"Global\\OrvlServiceStop";

// A signal handler may do no more than this, so the loop polls it.
std::atomic<bool> stopRequested = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

extern "C" void OnSignal(int)
{
    stopRequested = true;
}

DWORD WINAPI WaitForEndOfInput(void*)
{
    char byte = 0;
    while (read(0, &byte, 1) > 0)
    {
    }
    stopRequested = true;
    return 0;
}

// A pipe ends with the process at its other end. A console or the null device doesn't count.
bool IsFedByPipe()
{
    struct stat input = {};
    return fstat(0, &input) == 0 && S_ISFIFO(input.st_mode);
}

} // namespace

bool StopSignal::Listen()
{
    m_event.Reset(CreateEventW(nullptr, TRUE, FALSE, kStopEvent));
    if (!m_event || GetLastError() == ERROR_ALREADY_EXISTS)
    {
        return false;
    }
    std::signal(SIGINT, OnSignal);
    std::signal(SIGTERM, OnSignal);
    if (IsFedByPipe())
    {
        // The thread stays in its read when the service ends for another reason.
        const owners::Handle thread(CreateThread(nullptr, 0, WaitForEndOfInput, nullptr, 0, nullptr));
    }
    return true;
}

bool StopSignal::IsDue() const
{
    return stopRequested || WaitForSingleObject(m_event.Get(), 0) == WAIT_OBJECT_0;
}

bool StopSignal::Send()
{
    const owners::Handle event(OpenEventW(EVENT_MODIFY_STATE, FALSE, kStopEvent));
    return event && SetEvent(event.Get());
}

} // namespace service
