// modules/kernel32/Threads.cpp
//
// Threads. Each runs above one frame of this library, the start frame. A thread that ends in the middle of
// the plug-in, by FreeLibraryAndExitThread, jumps back to that frame, past all others, as on
// Windows, where no destructors run either; only there, with no frame of the plug-in left, the module may go.
//
// Known differences from Windows: a thread takes no flags and its exit code is
// dropped; the size of the stack is the native one;
// only a thread that CreateThread made can end itself, any other ends the process with a message; thread
// numbers are unique within a process only.

#include "modules/kernel32/Threads.h"

#include "modules/kernel32/Affinity.h"
#include "modules/kernel32/NativeLibraries.h"
#include "modules/kernel32/SystemModules.h"

#include <windows.h>

#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <pthread.h>

namespace simulated
{

namespace
{

// What passes between the start frame and the thread's own frames.
struct Start
{
    LPTHREAD_START_ROUTINE routine;
    void* parameter;
    std::shared_ptr<ThreadState> state;
    std::jmp_buf frame{};
    HMODULE moduleToRelease = nullptr;
};

thread_local Start* currentStart = nullptr;
thread_local std::shared_ptr<ThreadState> currentState;

// Kept apart from what follows the jump: nothing in this frame changes between the two returns of setjmp.
void RunRoutine(Start& start)
{
    if (setjmp(start.frame) == 0)
    {
        start.routine(start.parameter);
    }
}

void* StartFrame(void* argument)
{
    const std::unique_ptr<Start> start(static_cast<Start*>(argument));
    const std::shared_ptr<ThreadState> state = start->state;
    currentStart = start.get();
    currentState = state;
    RunRoutine(*start);
    currentStart = nullptr;
    if (start->moduleToRelease != nullptr)
    {
        libraries::Release(start->moduleToRelease);
    }
    state->ended.store(true, std::memory_order_release);
    state->wake->Announce();
    return nullptr;
}

[[noreturn]] void LeaveThread(HMODULE module)
{
    if (currentStart == nullptr)
    {
        std::fputs("FreeLibraryAndExitThread: CreateThread didn't make this thread\n", stderr);
        std::abort();
    }
    currentStart->moduleToRelease = module;
    std::longjmp(currentStart->frame, 1);
}

Outcome<HANDLE> Create(LPTHREAD_START_ROUTINE routine, void* parameter, DWORD flags, DWORD* threadId,
                       const PlatformCall& call)
{
    if (routine == nullptr || flags != 0)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    auto state = std::make_shared<ThreadState>();
    auto start = std::make_unique<Start>();
    start->routine = routine;
    start->parameter = parameter;
    start->state = state;

    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    pthread_t thread{};
    const int result = pthread_create(&thread, &attributes, &StartFrame, start.get());
    pthread_attr_destroy(&attributes);
    if (result != 0)
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    static_cast<void>(start.release()); // the thread's own from now on
    if (threadId != nullptr)
    {
        *threadId = state->id;
    }
    return {HandleTable::Insert(std::make_shared<Thread>(std::move(state)), call), ERROR_SUCCESS};
}

DWORD_PTR MaskOf(const ThreadState& state)
{
    const DWORD_PTR chosen = state.affinity.load() & ProcessMask();
    return chosen == 0 ? ProcessMask() : chosen;
}

Outcome<DWORD_PTR> ChangeMask(HANDLE handle, DWORD_PTR mask)
{
    const auto thread = HandleTable::Find<Thread>(handle);
    if (thread == nullptr && handle != GetCurrentThread())
    {
        return {0, ERROR_INVALID_HANDLE};
    }
    if (mask == 0 || (mask & ~ProcessMask()) != 0)
    {
        return {0, ERROR_INVALID_PARAMETER};
    }
    ThreadState& state = thread == nullptr ? CurrentThreadState() : thread->State();
    const DWORD_PTR before = MaskOf(state);
    state.affinity = mask;
    return {before, ERROR_SUCCESS};
}

} // namespace

DWORD ThreadState::NextId() noexcept
{
    static std::atomic<DWORD> next{0x100};
    return next.fetch_add(4);
}

ThreadState& CurrentThreadState()
{
    if (currentState == nullptr)
    {
        currentState = std::make_shared<ThreadState>();
    }
    return *currentState;
}

unsigned CurrentCore()
{
    return static_cast<unsigned>(std::countr_zero(MaskOf(CurrentThreadState())));
}

Thread::Thread(std::shared_ptr<ThreadState> state)
    : Waitable(ObjectKind::Thread, THREAD_ALL_ACCESS), m_state(std::move(state))
{
}

bool Thread::TryTake(std::uint32_t) noexcept
{
    return m_state->ended.load(std::memory_order_acquire);
}

} // namespace simulated

using namespace simulated;

SIM_API HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES, SIZE_T stackSize, LPTHREAD_START_ROUTINE start,
                                   LPVOID parameter, DWORD flags, LPDWORD threadId)
{
    PlatformCall call(CallClass::Thread, "CreateThread", SIM_CALLER);
    call.Arguments(stackSize, flags);
    return call.Result<HANDLE>(nullptr, [&] { return Create(start, parameter, flags, threadId, call); });
}

// The call is noted before the jump, which would pass its end by.
SIM_API void WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD exitCode)
{
    {
        PlatformCall call(CallClass::Thread, "FreeLibraryAndExitThread", SIM_CALLER);
        call.Arguments(module, exitCode);
        call.AnswerNothing();
    }
    LeaveThread(system_modules::IsModule(module) ? nullptr : module);
}

SIM_API DWORD_PTR WINAPI SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask)
{
    PlatformCall call(CallClass::Thread, "SetThreadAffinityMask", SIM_CALLER);
    call.Arguments(thread, mask);
    return call.Result<DWORD_PTR>(0, [&] { return ChangeMask(thread, mask); });
}

// What follows only tells who is there, and is no entrance.
SIM_API HANDLE WINAPI GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(LONG_PTR{-2});
}

SIM_API DWORD WINAPI GetCurrentThreadId()
{
    return CurrentThreadState().id;
}
