// tests/acceptance/HostThread.h
//
// A thread of the host's, by Windows functions: the cross-compiler's library has no std::thread.
#pragma once

#include <windows.h>

#include <functional>
#include <utility>

class HostThread
{
public:
    explicit HostThread(std::function<void()> work)
        : m_work(std::move(work)), m_thread(CreateThread(nullptr, 0, Run, this, 0, nullptr))
    {
    }

    /// Waits for the end of the thread.
    ~HostThread()
    {
        Join();
        CloseHandle(m_thread);
    }
    HostThread(const HostThread&) = delete;
    HostThread& operator=(const HostThread&) = delete;

    void Join() const
    {
        WaitForSingleObject(m_thread, INFINITE);
    }

private:
    static DWORD WINAPI Run(void* self)
    {
        static_cast<HostThread*>(self)->m_work();
        return 0;
    }

    std::function<void()> m_work;
    HANDLE m_thread;
};
