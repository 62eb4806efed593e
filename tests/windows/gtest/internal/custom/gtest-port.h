// tests/windows/gtest/internal/custom/gtest-port.h
//
// GoogleTest's hook for ports: the one thing for which it wants std::mutex and std::condition_variable, which
// the win32 flavour of the cross-compiler lacks, on an event of Windows.
#pragma once

#include <windows.h>

#define GTEST_HAS_NOTIFICATION_ 1

namespace testing::internal
{

class Notification
{
public:
    Notification() : m_event(CreateEventW(nullptr, TRUE, FALSE, nullptr))
    {
    }
    ~Notification()
    {
        CloseHandle(m_event);
    }
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    void Notify()
    {
        SetEvent(m_event);
    }
    void WaitForNotification()
    {
        WaitForSingleObject(m_event, INFINITE);
    }

private:
    HANDLE m_event;
};

} // namespace testing::internal
