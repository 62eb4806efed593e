// tests/reliability/TracedProcess.h
//
// A process that is killed at a chosen step: one of the system calls by which it changes what others see.
// What it writes to shared memory lies between two of them.
#pragma once

#include <algorithm>
#include <csignal>
#include <functional>
#include <iterator>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

/// Runs `setUp` and then `work` in a process of its own and kills it at the `step`th step (from 1) of
/// `work`'s calling thread, before that step takes effect. False when `work` ended before.
inline bool IsKilledAt(unsigned step, const std::function<void()>& setUp, const std::function<void()>& work)
{
    constexpr unsigned long kSteps[] = {SYS_write,  SYS_rename,    SYS_renameat2, SYS_unlink, SYS_mkdir,
                                        SYS_fchmod, SYS_utimensat, SYS_flock,     SYS_futex,  SYS_munmap};
    const pid_t process = fork();
    if (process == 0)
    {
        setUp();
        ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        raise(SIGSTOP);
        work();
        _exit(0);
    }
    int status = 0;
    waitpid(process, &status, 0);
    ptrace(PTRACE_SETOPTIONS, process, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    int signal = 0;
    while (step > 0 && ptrace(PTRACE_SYSCALL, process, nullptr, signal) == 0 &&
           waitpid(process, &status, 0) == process && WIFSTOPPED(status))
    {
        const bool isCall = WSTOPSIG(status) == (SIGTRAP | 0x80);
        // A program that replaces this one begins with a trap of its own.
        signal = isCall || WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
        __ptrace_syscall_info info = {};
        if (isCall && ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY &&
            std::find(std::begin(kSteps), std::end(kSteps), info.entry.nr) != std::end(kSteps))
        {
            --step;
        }
    }
    if (step == 0)
    {
        kill(process, SIGKILL);
        waitpid(process, &status, 0);
    }
    return step == 0;
}
