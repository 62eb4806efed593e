// modules/kernel32/Threads.cpp
//
// Threads and the cores that they may use. Each thread runs above one frame of this library, the start frame.
// One that ends in the middle of the plug-in, by FreeLibraryAndExitThread, jumps back to that frame, past all
// others, as on Windows, where no destructors run either; only there, with no frame of the plug-in left, the
// module may go.
//
// Known differences from Windows: a thread takes no flags and its exit code is dropped; the size of the stack
// is the native one; only a thread that CreateThread made can end itself, any other ends the process with a
// message; thread numbers are unique within a process only.

#include "modules/kernel32/Threads.h"

#include "machine/Machine.h"
#include "modules/kernel32/NativeLibraries.h"
#include "modules/kernel32/SystemModules.h"
#include "modules/kernel32/Waits.h"

#include <windows.h>

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <pthread.h>

namespace simulated
{

namespace
{

constexpr const char* kProcessorSection = "Processor";
constexpr std::uint64_t kDefaultCores = 4;
constexpr std::uint64_t kMostCores = 32;

DWORD NextId() noexcept
{
    static std::atomic<DWORD> next{0x100};
    return next.fetch_add(4);
}

// What is kept of a thread as long as it runs or has a handle.
struct ThreadState
{
    DWORD id = NextId();
    std::shared_ptr<WakeWord> wake = WakeWord::Current();
    std::atomic<bool> ended{false};
    std::atomic<DWORD_PTR> affinity{0}; ///< 0 until it is set: all cores of the process
};

class Thread final : public Waitable
{
public:
    explicit Thread(std::shared_ptr<ThreadState> state)
        : Waitable(ObjectKind::Thread, THREAD_ALL_ACCESS, state->wake), m_state(std::move(state))
    {
    }

    ThreadState& State() const noexcept
    {
        return *m_state;
    }

    bool TryTake(std::uint32_t) noexcept override
    {
        return m_state->ended.load(std::memory_order_acquire);
    }

private:
    std::shared_ptr<ThreadState> m_state;
};

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

// Kept apart from the code after the jump: nothing in this frame changes between the two returns of setjmp.
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
    auto start = std::make_unique<Start>(Start{routine, parameter, state});
    pthread_t thread{};
    if (pthread_create(&thread, nullptr, &StartFrame, start.get()) != 0)
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    pthread_detach(thread);
    static_cast<void>(start.release()); // the thread's own from now on
    if (threadId != nullptr)
    {
        *threadId = state->id;
    }
    return {HandleTable::Insert(std::make_shared<Thread>(std::move(state)), call), ERROR_SUCCESS};
}

// One bit for each core of the machine.
DWORD_PTR SystemMask()
{
    const std::uint64_t cores = Machine::ReadNumber(kProcessorSection, "Cores", kDefaultCores);
    return static_cast<DWORD_PTR>((std::uint64_t{1} << std::clamp<std::uint64_t>(cores, 1, kMostCores)) - 1);
}

// The cores that this process may use; never 0.
DWORD_PTR ProcessMask()
{
    const DWORD_PTR all = SystemMask();
    const auto share =
        static_cast<DWORD_PTR>(Machine::ReadNumber(kProcessorSection, "ProcessMask", all)) & all;
    return share == 0 ? all : share;
}

// The calling thread's state, also when CreateThread didn't make the thread.
ThreadState& CurrentThreadState()
{
    if (currentState == nullptr)
    {
        currentState = std::make_shared<ThreadState>();
    }
    return *currentState;
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

unsigned CurrentCore()
{
    return static_cast<unsigned>(std::countr_zero(MaskOf(CurrentThreadState())));
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

// The call is recorded before the jump, which skips its end.
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

SIM_API BOOL WINAPI GetProcessAffinityMask(HANDLE process, PDWORD_PTR processMask, PDWORD_PTR systemMask)
{
    PlatformCall call(CallClass::Thread, "GetProcessAffinityMask", SIM_CALLER);
    call.Arguments(process);
    return call.Boolean(
        [&]() -> DWORD
        {
            if (process != GetCurrentProcess())
            {
                return ERROR_INVALID_HANDLE;
            }
            if (processMask == nullptr || systemMask == nullptr)
            {
                return ERROR_NOACCESS;
            }
            *processMask = ProcessMask();
            *systemMask = SystemMask();
            return ERROR_SUCCESS;
        });
}

// The following only return identities and aren't traced.
SIM_API HANDLE WINAPI GetCurrentProcess()
{
    return reinterpret_cast<HANDLE>(LONG_PTR{-1});
}

SIM_API HANDLE WINAPI GetCurrentThread()
{
    return reinterpret_cast<HANDLE>(LONG_PTR{-2});
}

SIM_API DWORD WINAPI GetCurrentThreadId()
{
    return CurrentThreadState().id;
}
