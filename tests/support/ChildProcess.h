// tests/support/ChildProcess.h
//
// A second process of a test on the same notebook. It ends with the object, whatever the test did.
#pragma once

#include <csignal>
#include <functional>
#include <sys/wait.h>
#include <unistd.h>

class ChildProcess
{
public:
    /// Runs `work` in a process of its own, which exits with 0 when that returns true.
    explicit ChildProcess(const std::function<bool()>& work) : m_process(fork())
    {
        if (m_process == 0)
        {
            _exit(work() ? 0 : 1);
        }
    }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    ~ChildProcess()
    {
        Kill();
    }

    void Kill()
    {
        if (m_process > 0)
        {
            kill(m_process, SIGKILL);
            Await();
        }
    }

    /// Waits for the end: the exit code, -1 for a killed process.
    int Await()
    {
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process;
};
