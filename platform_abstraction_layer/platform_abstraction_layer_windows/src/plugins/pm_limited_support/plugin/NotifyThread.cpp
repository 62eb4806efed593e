// plugin/NotifyThread.cpp
//
// Start and end of the notification thread, and what it does in between.

#include "plugin/NotifyThread.h"

#include "foundation/Owners.h"
#include "foundation/PmLog.h"
#include "plugin/PluginHelper.h"

#include <iterator>
#include <utility>

namespace notification
{

namespace
{

// One start of the thread. It is shared by the thread and by who stops it, and goes with the last of them, so
// that neither has to outlive the other.
struct Run
{
    HANDLE stopEvent; // private to this start: a later one isn't stopped with it
    HANDLE appliedEvent;
    HMODULE module; // the thread's own reference to the library in which it runs
    DWORD threadId;
    bool isOver; // the thread's own: it was stopped from within its call of the host
    LONG volatile shares;
    Run* nextAlive;
};

// Guards the context's handles and the two variables below. Nobody waits or calls the host under it.
CRITICAL_SECTION section;

// The start to which the context's handles belong.
Run* current = nullptr;

// Starts whose thread hasn't ended. A thread finds its own by its number: another start may already have
// followed when it gets to run.
Run* alive = nullptr;

// Held while one caller stops a thread and waits for its end, so that a second caller doesn't return before
// it. The threads that are stopped never take it.
CRITICAL_SECTION stopping;

void CloseEvents(Run& run) noexcept
{
    for (HANDLE* const event : {&run.appliedEvent, &run.stopEvent})
    {
        if (*event != nullptr)
        {
            CloseHandle(std::exchange(*event, nullptr));
        }
    }
}

void GiveBack(Run* run) noexcept
{
    if (InterlockedDecrement(&run->shares) == 0)
    {
        CloseEvents(*run);
        HeapFree(GetProcessHeap(), 0, run);
    }
}

// A start with all that its thread needs; null when something can't be had.
Run* Prepare() noexcept
{
    auto* const run = static_cast<Run*>(owners::AllocateBlock(sizeof(Run)).Detach());
    if (run == nullptr)
    {
        return nullptr;
    }
    run->shares = 1;
    run->appliedEvent = CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent");
    run->stopEvent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const auto inside = reinterpret_cast<LPCWSTR>(reinterpret_cast<void*>(&PMNotifyHandler));
    if (run->appliedEvent == nullptr || run->stopEvent == nullptr ||
        !GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS, inside, &run->module))
    {
        GiveBack(run);
        return nullptr;
    }
    return run;
}

// The calling thread's own start, or null.
Run* FindOwn() noexcept
{
    const owners::SectionLock lock(section);
    const DWORD self = GetCurrentThreadId();
    Run* run = alive;
    while (run != nullptr && run->threadId != self)
    {
        run = run->nextAlive;
    }
    return run;
}

// Takes a start out of the list, as the last thing that its thread does with it.
void Leave(const Run* run) noexcept
{
    const owners::SectionLock lock(section);
    Run** link = &alive;
    while (*link != run)
    {
        link = &(*link)->nextAlive;
    }
    *link = run->nextAlive;
}

// The number of the scheme in force as the party outside stored it; 0, with the reason logged, when it can't
// be read.
LONG ReadAppliedScheme() noexcept
{
    owners::Key key;
    const LSTATUS opened =
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, key.Receive());
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
    // The first of several signalled events counts, so an end that is asked for comes before another event.
    const HANDLE events[] = {run.stopEvent, run.appliedEvent};
    return WaitForMultipleObjects(static_cast<DWORD>(std::size(events)), events, FALSE, INFINITE) ==
           WAIT_OBJECT_0 + 1;
}

// Ends the current start, if there is one, and waits for its thread unless that is the calling one.
void StopCurrent(CPluginHelper& context) noexcept
{
    Run* run = nullptr;
    owners::Handle thread;
    {
        const owners::SectionLock lock(section);
        run = std::exchange(current, nullptr);
        thread.Reset(std::exchange(context.notifyThread, nullptr));
        context.applySchemeEvent = nullptr;
    }
    if (run == nullptr)
    {
        return;
    }
    if (run->threadId == GetCurrentThreadId())
    {
        // It doesn't wait now and won't again, so nobody needs the events any more.
        run->isOver = true;
        CloseEvents(*run);
    }
    else if (SetEvent(run->stopEvent))
    {
        WaitForSingleObject(thread.Get(), INFINITE);
    }
    thread.Reset();
    GiveBack(run);
}

} // namespace

void SetUp() noexcept
{
    InitializeCriticalSection(&section);
    InitializeCriticalSection(&stopping);
}

void TearDown() noexcept
{
    DeleteCriticalSection(&stopping);
    DeleteCriticalSection(&section);
}

bool Start(CPluginHelper& context) noexcept
{
    const owners::SectionLock lock(section);
    if (current != nullptr)
    {
        return true;
    }
    Run* const run = Prepare();
    if (run == nullptr)
    {
        return false;
    }
    // The thread looks for its start under the lock, so it finds it complete.
    const HANDLE thread = CreateThread(nullptr, 0, &PMNotifyHandler, nullptr, 0, &run->threadId);
    if (thread == nullptr)
    {
        FreeLibrary(run->module);
        GiveBack(run);
        return false;
    }
    run->shares = 2;
    run->nextAlive = std::exchange(alive, run);
    current = run;
    context.applySchemeEvent = run->appliedEvent;
    context.notifyThread = thread;
    PmLog(L"Create Event APPLY_SCHEME_EVENT");
    return true;
}

void Stop(CPluginHelper& context) noexcept
{
    if (FindOwn() != nullptr)
    {
        StopCurrent(context);
        return;
    }
    const owners::SectionLock turn(stopping);
    StopCurrent(context);
}

} // namespace notification

DWORD WINAPI PMNotifyHandler(LPVOID) noexcept
{
    PmLog(L"enter PMNotifyHandler");
    notification::Run* const run = notification::FindOwn();
    if (run == nullptr)
    {
        PmLog(L"return PMNotifyHandler");
        return 0;
    }
    while (!run->isOver && notification::WaitForApplied(*run))
    {
        PmLog(L"Wait PM_APPLY_SCHEME and send back event");
        // Before the number is read, so that a signal from now on makes another round.
        ResetEvent(run->appliedEvent);
        const LONG scheme = notification::ReadAppliedScheme();
        PmLog(L"send event PM_SCHEME_APPLIED back with %d", scheme);
        CPluginHelper::Instance().SendHostEvent("SCHEME_APPLIED", scheme);
    }
    PmLog(L"return PMNotifyHandler");

    // The host may have unloaded the library from within its event; the last reference is then this thread's.
    const HMODULE module = run->module;
    notification::Leave(run);
    notification::GiveBack(run);
    FreeLibraryAndExitThread(module, 0);
}
