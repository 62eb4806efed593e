// kernel32/NamedObjectsTest.cpp
//
// Named objects between processes: who sees them, how long they live, and what a killed process leaves.

#include "kernel32/OwnedHandle.h"
#include "notebook/Clock.h"
#include "support/ChildProcess.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"

namespace
{

class NamedObjectsTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        // Processes take their real time.
        simulated::Clock::SetInstant(false);
    }

    static bool Await(const OwnedHandle& object)
    {
        return WaitForSingleObject(object.get(), 20000) == WAIT_OBJECT_0;
    }
};

OwnedHandle OpenEvent(LPCWSTR name)
{
    return OwnedHandle(OpenEventW(EVENT_ALL_ACCESS, FALSE, name));
}

/// The child's work: makes the event "Held", tells so by "Ready" and waits for ever.
bool Hold()
{
    const OwnedHandle held(CreateEventW(nullptr, TRUE, FALSE, L"Global\\Held"));
    SetEvent(OpenEvent(L"Ready").get());
    return WaitForSingleObject(held.get(), INFINITE) == WAIT_OBJECT_0;
}

constexpr int kAdditions = 500;

/// Adds to the number on the mapping "Board", each time under the semaphore "Lock".
bool Count()
{
    const OwnedHandle lock(OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, FALSE, L"Global\\Lock"));
    const OwnedHandle board(OpenFileMappingW(SECTION_ALL_ACCESS, FALSE, L"Global\\Board"));
    auto* const number = static_cast<volatile LONG*>(MapViewOfFile(board.get(), SECTION_ALL_ACCESS, 0, 0, 4));
    for (int round = 0; round < kAdditions; ++round)
    {
        if (WaitForSingleObject(lock.get(), INFINITE) != WAIT_OBJECT_0)
        {
            return false;
        }
        *number = *number + 1;
        ReleaseSemaphore(lock.get(), 1, nullptr);
    }
    return true;
}

} // namespace

// Whoever opens a board after its service was killed must not find one that nobody serves.
TEST_F(NamedObjectsTest, ObjectEndsWithItsLastHolderKilledOrNot)
{
    for (const bool isHeldHereToo : {true, false})
    {
        const OwnedHandle ready(CreateEventW(nullptr, TRUE, FALSE, L"Ready"));
        ChildProcess child(&Hold);
        ASSERT_TRUE(Await(ready));
        OwnedHandle held = isHeldHereToo ? OpenEvent(L"Global\\Held") : nullptr;
        child.Kill();
        EXPECT_EQ(isHeldHereToo, OpenEvent(L"Global\\Held") != nullptr);
        held.reset();
        EXPECT_EQ(ERROR_FILE_NOT_FOUND, ErrorOf(OpenEvent(L"Global\\Held") != nullptr));
        EXPECT_NE(nullptr, OwnedHandle(CreateSemaphoreW(nullptr, 0, 1, L"Global\\Held")))
            << "the name is free";
        EXPECT_EQ(ERROR_SUCCESS, GetLastError());
    }
}

TEST_F(NamedObjectsTest, SemaphoreSerialisesProcesses)
{
    const OwnedHandle lock(CreateSemaphoreW(nullptr, 1, 0x7FFFFFFF, L"Global\\Lock"));
    const OwnedHandle board(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1024, L"Global\\Board"));
    void* const view = MapViewOfFile(board.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(LONG));
    ASSERT_NE(nullptr, view);
    ChildProcess first(&Count);
    ChildProcess second(&Count);
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    EXPECT_EQ(2 * kAdditions, *static_cast<LONG*>(view));
    EXPECT_TRUE(UnmapViewOfFile(view));
}
