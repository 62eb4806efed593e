// plugin/NotifyThread.cpp
//
// Start and end of the notification thread, and what it does in between.

#include "plugin/NotifyThread.h"

#include "foundation/Log.h"
#include "foundation/Owners.h"
#include "plugin/PluginHelper.h"

#include <iterator>
#include <new>
#include <utility>

namespace notification
{

namespace
{

// One start of the thread, kept until the thread has ended.
struct Run
{
    owners::Handle appliedEvent; // the thread's own to close
    owners::Handle stopEvent;    // private to this start: another one isn't stopped with it
    owners::Module module;       // the thread's reference to the library in which it runs
    owners::Handle thread;
    DWORD threadId = 0;
    Run* earlier = nullptr;
};

void Delete(Run* run) noexcept
{
    run->~Run();
    owners::FreeBlock(run);
}

using OwnedRun = owners::Owner<Run*, Delete>;

// Guards the context's two handles and what follows. It is never held while waiting for a thread or calling
// the host.
CRITICAL_SECTION section;

// The starts whose threads may still run, the latest first. The context's handles are the latest's, or null
// when that is over too.
Run* runs = nullptr;

// Callers that wait outside the lock for the threads in the list. As long as there is one, nothing leaves it.
unsigned waiting = 0;

bool HasEnded(const Run& run) noexcept
{
    return WaitForSingleObject(run.thread.Get(), 0) == WAIT_OBJECT_0;
}

void RemoveEnded() noexcept
{
    Run** link = &runs;
    while (waiting == 0 && *link != nullptr)
    {
        Run* const run = *link;
        if (HasEnded(*run))
        {
            *link = run->earlier;
            Delete(run);
        }
        else
        {
            link = &run->earlier;
        }
    }
}

// The calling thread's own start; null on a thread that isn't the plug-in's.
Run* FindOwn() noexcept
{
    const DWORD self = GetCurrentThreadId();
    Run* run = runs;
    while (run != nullptr && run->threadId != self)
    {
        run = run->earlier;
    }
    return run;
}

void ClearHandles(CPluginHelper& context) noexcept
{
    context.notifyThread = nullptr;
    context.applySchemeEvent = nullptr;
}

// A thread that still runs though its start is over. When there is none, the caller is done with waiting.
const Run* FindEnding(const CPluginHelper& context) noexcept
{
    const owners::SectionLock lock(section);
    const Run* run = runs;
    while (run != nullptr && (run->thread.Get() == context.notifyThread || HasEnded(*run)))
    {
        run = run->earlier;
    }
    if (run == nullptr)
    {
        --waiting;
        RemoveEnded();
    }
    return run;
}

// A running thread with all that it needs; empty, with nothing left behind, when something can't be had.
OwnedRun StartThread() noexcept
{
    void* const block = owners::AllocateBlock(sizeof(Run)).Detach();
    OwnedRun run(block == nullptr ? nullptr : new (block) Run);
    if (!run)
    {
        return run;
    }
    Run& start = *run.Get();
    const auto inside = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&PMNotifyHandler));
    start.appliedEvent.Reset(CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent"));
    start.stopEvent.Reset(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    if (start.appliedEvent && start.stopEvent &&
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, inside, start.module.Put()))
    {
        start.thread.Reset(CreateThread(nullptr, 0, &PMNotifyHandler, nullptr, 0, &start.threadId));
    }
    if (!start.thread)
    {
        run.Reset();
    }
    return run;
}

// The number of the scheme in force as the party outside stored it; 0, with the reason logged, when it can't
// be read.
LONG ReadAppliedScheme() noexcept
{
    owners::Key key;
    const LSTATUS opened =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, key.Put());
    if (opened != ERROR_SUCCESS)
    {
        PmLog(L"PMNotifyHandler: open key failed %d ", opened);
        return 0;
    }
    LONG scheme = 0;
    DWORD size = sizeof scheme;
    const LSTATUS read = RegQueryValueExW(key.Get(), L"CurrentPwrSchemeID", nullptr, nullptr,
                                          reinterpret_cast<LPBYTE>(&scheme), &size);
    if (read != ERROR_SUCCESS)
    {
        PmLog(L"PMNotifyHandler: Query CurrentSchemeID at %d failed", read);
        return 0;
    }
    return scheme;
}

// True when the applied event was signalled, false when the thread is to end.
bool WaitForApplied(const Run& run) noexcept
{
    if (!run.appliedEvent)
    {
        return false; // the host stopped this start from within its event
    }
    // The first of several signalled events counts, so an end that is asked for comes before another event.
    const HANDLE events[] = {run.stopEvent.Get(), run.appliedEvent.Get()};
    return WaitForMultipleObjects(static_cast<DWORD>(std::size(events)), events, FALSE, INFINITE) ==
           WAIT_OBJECT_0 + 1;
}

// The calling thread's start. It is complete by the time that the thread gets the lock.
Run& Join() noexcept
{
    const owners::SectionLock lock(section);
    return *FindOwn();
}

// Ends the calling thread's start, which may be the present one when a wait failed. Gives the thread's
// reference to the library.
HMODULE Leave(Run& run) noexcept
{
    const owners::SectionLock lock(section);
    if (CPluginHelper& context = CPluginHelper::Instance(); context.notifyThread == run.thread.Get())
    {
        ClearHandles(context);
    }
    run.appliedEvent.Reset();
    run.threadId = 0; // from here on the number may become another thread's
    return run.module.Detach();
}

} // namespace

void SetUp() noexcept
{
    InitializeCriticalSection(&section);
}

void TearDown() noexcept
{
    // The last thread may be the one that unloads the library; it has left its start behind.
    while (runs != nullptr)
    {
        Delete(std::exchange(runs, runs->earlier));
    }
    DeleteCriticalSection(&section);
}

bool Start(CPluginHelper& context) noexcept
{
    // The thread looks for its start under the lock, so it finds it complete.
    const owners::SectionLock lock(section);
    if (context.notifyThread != nullptr)
    {
        return true;
    }
    RemoveEnded();
    OwnedRun run = StartThread();
    if (!run)
    {
        return false;
    }
    context.applySchemeEvent = run.Get()->appliedEvent.Get();
    context.notifyThread = run.Get()->thread.Get();
    run.Get()->earlier = runs;
    runs = run.Detach();
    return true;
}

void Stop(CPluginHelper& context) noexcept
{
    {
        const owners::SectionLock lock(section);
        Run* const own = FindOwn();
        // Another thread that can't be asked to end goes on; this one needs no event.
        if (context.notifyThread != nullptr && (SetEvent(runs->stopEvent.Get()) || own == runs))
        {
            ClearHandles(context);
        }
        if (own != nullptr)
        {
            // It doesn't wait for its event now and won't again.
            own->appliedEvent.Reset();
            return;
        }
        ++waiting;
    }
    // A start that is made and stopped in the meantime is waited for too.
    while (const Run* const run = FindEnding(context))
    {
        WaitForSingleObject(run->thread.Get(), INFINITE);
    }
}

} // namespace notification

DWORD WINAPI PMNotifyHandler(LPVOID) noexcept
{
    PmLog(L"enter PMNotifyHandler");
    notification::Run& run = notification::Join();
    while (notification::WaitForApplied(run))
    {
        PmLog(L"Wait PM_APPLY_SCHEME and send back event");
        // Before the number is read, so that a signal from now on makes another round.
        ResetEvent(run.appliedEvent.Get());
        const LONG scheme = notification::ReadAppliedScheme();
        PmLog(L"send event PM_SCHEME_APPLIED back with %d", scheme);
        CPluginHelper::Instance().SendHostEvent("SCHEME_APPLIED", scheme);
    }
    const HMODULE module = notification::Leave(run);
    PmLog(L"return PMNotifyHandler");

    // The host may have unloaded the library from within its event; the last reference is then this thread's.
    FreeLibraryAndExitThread(module, 0);
}
