// kernel32/WaitsTest.cpp
//
// What waits, events, semaphores, mappings, threads and critical sections promise within one process.

#include "kernel32/KernelTest.h"

#include "kernel32/Affinity.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstring>
#include <thread>
#include <vector>

namespace
{

using WaitsTest = KernelTest;

OwnedHandle NewEvent(bool manualReset, bool signalled = false)
{
    return OwnedHandle(CreateEventW(nullptr, manualReset, signalled, nullptr));
}

} // namespace

// The notification thread's whole work depends on it: the signal must not get lost in a quick reset.
TEST_F(WaitsTest, PulseReleasesAllPresentWaiters)
{
    for (int round = 0; round < 20; ++round)
    {
        const OwnedHandle event = NewEvent(true);
        std::atomic<int> about{0};
        std::atomic<int> released{0};
        std::vector<std::thread> waiters;
        for (int waiter = 0; waiter < 4; ++waiter)
        {
            waiters.emplace_back(
                [&]
                {
                    ++about;
                    released += WaitForSingleObject(event.get(), 20000) == WAIT_OBJECT_0 ? 1 : 0;
                });
        }
        while (about < 4)
        {
            std::this_thread::yield();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        SetEvent(event.get());
        ResetEvent(event.get());
        for (std::thread& waiter : waiters)
        {
            waiter.join();
        }
        EXPECT_EQ(4, released);
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.get(), 0));
    }
}

TEST_F(WaitsTest, FirstSignalledOfSeveralCountsAndOnlyItIsTaken)
{
    const OwnedHandle manual = NewEvent(true);
    const OwnedHandle automatic = NewEvent(false, true);
    const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 2, 2, nullptr));
    const std::array<HANDLE, 3> awaited{manual.get(), automatic.get(), semaphore.get()};
    const auto wait = [&] { return WaitForMultipleObjects(3, awaited.data(), FALSE, 0); };
    const DWORD expected[] = {WAIT_OBJECT_0 + 1, WAIT_OBJECT_0 + 2, WAIT_OBJECT_0 + 2, WAIT_TIMEOUT};
    for (const DWORD answer : expected)
    {
        EXPECT_EQ(answer, wait());
    }
    SetEvent(automatic.get());
    SetEvent(manual.get());
    EXPECT_EQ(WAIT_OBJECT_0, wait());
    EXPECT_EQ(WAIT_OBJECT_0, wait());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(automatic.get(), 0));
}

TEST_F(WaitsTest, WaitsRefuseWhatTheyCannotServe)
{
    const OwnedHandle event = NewEvent(true);
    const OwnedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 8, nullptr));
    const OwnedHandle named(CreateEventW(nullptr, TRUE, TRUE, L"Limited"));
    const OwnedHandle noWait(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"Limited"));
    const OwnedHandle noChange(OpenEventW(SYNCHRONIZE, FALSE, L"Limited"));
    const std::array<HANDLE, 2> both{event.get(), event.get()};
    struct Case
    {
        const char* what;
        DWORD answer;
        DWORD error;
    };
    const auto single = [](const char* what, HANDLE handle)
    {
        const DWORD answer = WaitForSingleObject(handle, 0);
        return Case{what, answer, GetLastError()};
    };
    const auto several = [&](const char* what, DWORD count, BOOL all)
    {
        const DWORD answer = WaitForMultipleObjects(count, both.data(), all, 0);
        return Case{what, answer, GetLastError()};
    };
    const Case cases[] = {single("null", nullptr),        single("mapping", mapping.get()),
                          single("rights", noWait.get()), several("none", 0, FALSE),
                          several("too many", 65, FALSE), several("all of two", 2, TRUE)};
    const DWORD errors[] = {ERROR_INVALID_HANDLE,    ERROR_INVALID_HANDLE,    ERROR_ACCESS_DENIED,
                            ERROR_INVALID_PARAMETER, ERROR_INVALID_PARAMETER, ERROR_NOT_SUPPORTED};
    for (std::size_t index = 0; index < std::size(cases); ++index)
    {
        EXPECT_EQ(WAIT_FAILED, cases[index].answer) << cases[index].what;
        EXPECT_EQ(errors[index], cases[index].error) << cases[index].what;
    }
    EXPECT_FALSE(SetEvent(noChange.get()));
    EXPECT_EQ(ERROR_ACCESS_DENIED, GetLastError());
    EXPECT_FALSE(SetEvent(mapping.get()));
    EXPECT_EQ(ERROR_INVALID_HANDLE, GetLastError());
}

TEST_F(WaitsTest, InstantClockShortensTimeOutsAndMovesOn)
{
    const OwnedHandle event = NewEvent(true);
    const DWORD before = GetTickCount();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.get(), 60000));
    Sleep(30000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    EXPECT_GE(GetTickCount() - before, 90000u);
}

TEST_F(WaitsTest, SemaphoreTellsItsCountAndKeepsItsBound)
{
    const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 1, 3, nullptr));
    struct Case
    {
        LONG count;
        DWORD error;
        LONG previous;
    };
    const Case cases[] = {{1, ERROR_SUCCESS, 1},
                          {2, ERROR_TOO_MANY_POSTS, -1},
                          {0x7FFFFFFF, ERROR_TOO_MANY_POSTS, -1},
                          {0, ERROR_INVALID_PARAMETER, -1},
                          {-1, ERROR_INVALID_PARAMETER, -1},
                          {1, ERROR_SUCCESS, 2}};
    for (const Case& row : cases)
    {
        LONG previous = -1;
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(row.error == ERROR_SUCCESS, ReleaseSemaphore(semaphore.get(), row.count, &previous));
        EXPECT_EQ(row.error, GetLastError());
        EXPECT_EQ(row.previous, previous);
    }
    for (const DWORD answer : {WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_TIMEOUT})
    {
        EXPECT_EQ(answer, WaitForSingleObject(semaphore.get(), 0));
    }
    EXPECT_EQ(nullptr, CreateSemaphoreW(nullptr, 4, 3, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

TEST_F(WaitsTest, ViewsAreBoundedByWholePages)
{
    const OwnedHandle made(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0x10001, L"Board"));
    const OwnedHandle readable(OpenFileMappingW(SECTION_MAP_READ, FALSE, L"Board"));
    struct Case
    {
        HANDLE mapping;
        DWORD access;
        DWORD offset;
        SIZE_T size;
        DWORD error;
    };
    const Case cases[] = {{made.get(), FILE_MAP_ALL_ACCESS, 0, 0x11000, ERROR_SUCCESS},
                          {made.get(), FILE_MAP_ALL_ACCESS, 0, 0x11001, ERROR_ACCESS_DENIED},
                          {made.get(), FILE_MAP_ALL_ACCESS, 0, SIZE_MAX, ERROR_ACCESS_DENIED},
                          {made.get(), FILE_MAP_READ, 0x10000, 0x1000, ERROR_SUCCESS},
                          {made.get(), FILE_MAP_READ, 0x10000, 0x1001, ERROR_ACCESS_DENIED},
                          {made.get(), FILE_MAP_READ, 0x20000, 0, ERROR_ACCESS_DENIED},
                          {made.get(), FILE_MAP_READ, 0x1000, 1, ERROR_MAPPED_ALIGNMENT},
                          {made.get(), 0, 0, 1, ERROR_INVALID_PARAMETER},
                          {readable.get(), FILE_MAP_READ, 0, 0, ERROR_SUCCESS},
                          {readable.get(), FILE_MAP_WRITE, 0, 1, ERROR_ACCESS_DENIED},
                          {nullptr, FILE_MAP_READ, 0, 1, ERROR_INVALID_HANDLE}};
    for (const Case& row : cases)
    {
        SetLastError(ERROR_SUCCESS);
        void* const view = MapViewOfFile(row.mapping, row.access, 0, row.offset, row.size);
        EXPECT_EQ(row.error, GetLastError()) << row.offset << ' ' << row.size;
        EXPECT_EQ(row.error == ERROR_SUCCESS, view != nullptr);
        EXPECT_EQ(view != nullptr, UnmapViewOfFile(view));
    }
    EXPECT_FALSE(UnmapViewOfFile(&made));
    EXPECT_EQ(ERROR_INVALID_ADDRESS, GetLastError());
    EXPECT_EQ(nullptr, CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}

TEST_F(WaitsTest, ViewOutlivesItsHandleAndSharesItsBytes)
{
    OwnedHandle mapping(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 100, nullptr));
    auto* const written = static_cast<BYTE*>(MapViewOfFile(mapping.get(), FILE_MAP_WRITE, 0, 0, 100));
    const auto* const read = static_cast<const BYTE*>(MapViewOfFile(mapping.get(), FILE_MAP_READ, 0, 0, 0));
    mapping.reset();
    written[99] = 0x5A;
    EXPECT_EQ(0x5A, read[99]);
    EXPECT_TRUE(UnmapViewOfFile(written));
    EXPECT_TRUE(UnmapViewOfFile(read));
}

TEST_F(WaitsTest, ThreadHandleIsSignalledAtTheEndWithTheExitCode)
{
    const LPTHREAD_START_ROUTINE routines[] = {[](LPVOID go) -> DWORD
                                               {
                                                   WaitForSingleObject(go, INFINITE);
                                                   return 17;
                                               },
                                               [](LPVOID go) -> DWORD
                                               {
                                                   WaitForSingleObject(go, INFINITE);
                                                   ExitThread(17);
                                               }};
    for (const LPTHREAD_START_ROUTINE routine : routines)
    {
        const OwnedHandle go = NewEvent(true);
        DWORD id = 0;
        DWORD code = 0;
        const OwnedHandle thread(CreateThread(nullptr, 0, routine, go.get(), 0, &id));
        EXPECT_NE(GetCurrentThreadId(), id);
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(thread.get(), 0));
        EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
        EXPECT_EQ(STILL_ACTIVE, code);
        SetEvent(go.get());
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(thread.get(), INFINITE));
        EXPECT_TRUE(GetExitCodeThread(thread.get(), &code));
        EXPECT_EQ(17u, code);
    }
    EXPECT_EQ(nullptr, CreateThread(nullptr, 0, routines[0], nullptr, CREATE_SUSPENDED, nullptr));
    EXPECT_EQ(ERROR_NOT_SUPPORTED, GetLastError());
}

TEST_F(WaitsTest, ThreadStaysOnTheCoreItWasGiven)
{
    simulated::Machine::WriteNumber("Processor", "Cores", 4);
    simulated::Machine::WriteNumber("Processor", "ProcessMask", 0xE);
    DWORD_PTR process = 0;
    DWORD_PTR machine = 0;
    EXPECT_TRUE(GetProcessAffinityMask(GetCurrentProcess(), &process, &machine));
    EXPECT_EQ(0xEu, process);
    EXPECT_EQ(0xFu, machine);
    std::thread(
        []
        {
            EXPECT_EQ(1u, simulated::CurrentCore());
            EXPECT_EQ(0xEu, SetThreadAffinityMask(GetCurrentThread(), 8));
            EXPECT_EQ(3u, simulated::CurrentCore());
            for (const DWORD_PTR refused : {0u, 1u, 0x18u})
            {
                EXPECT_EQ(0u, SetThreadAffinityMask(GetCurrentThread(), refused));
                EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
            }
            EXPECT_EQ(8u, SetThreadAffinityMask(GetCurrentThread(), 4));
        })
        .join();
    EXPECT_EQ(1u, simulated::CurrentCore());
}

TEST_F(WaitsTest, CriticalSectionIsItsOwnersAlone)
{
    CRITICAL_SECTION section;
    InitializeCriticalSection(&section);
    int shared = 0;
    const auto tryElsewhere = [&]
    {
        BOOL entered = FALSE;
        std::thread(
            [&]
            {
                entered = TryEnterCriticalSection(&section);
                if (entered)
                {
                    ++shared;
                    LeaveCriticalSection(&section);
                }
            })
            .join();
        return entered;
    };
    EnterCriticalSection(&section);
    EXPECT_TRUE(TryEnterCriticalSection(&section));
    EXPECT_FALSE(tryElsewhere());
    LeaveCriticalSection(&section);
    EXPECT_FALSE(tryElsewhere());
    LeaveCriticalSection(&section);
    EXPECT_TRUE(tryElsewhere());
    EXPECT_EQ(1, shared);
    DeleteCriticalSection(&section);
}
