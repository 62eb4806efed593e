// tests/support/googletest/gtest/internal/custom/gtest-port.h
//
// GoogleTest's hook for platform differences, found before its own empty one. The win32 flavour of
// the cross-compiler has no std::mutex, which GoogleTest takes for its notification between threads.
#pragma once

#include <atomic>

#define GTEST_HAS_NOTIFICATION_ 1

extern "C" __declspec(dllimport) void __stdcall Sleep(unsigned long milliseconds);

namespace testing::internal
{

class Notification
{
public:
    void Notify()
    {
        m_notified = true;
    }
    void WaitForNotification()
    {
        while (!m_notified)
        {
            Sleep(1);
        }
    }

private:
    std::atomic<bool> m_notified{false};
};

} // namespace testing::internal
