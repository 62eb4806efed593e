// kernel32/NamedObjectsTest.cpp
//
// Named objects between processes: who sees them, how long they live, and what a killed process leaves.

#include "kernel32/OwnedHandle.h"
#include "notebook/Clock.h"
#include "support/NotebookTest.h"

#include <array>
#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <vector>

namespace
{

/// A running kernel_peer.
class Peer
{
public:
    Peer(const std::string& folder, const std::string& verb)
    {
        std::string notebook = "SIM_NOTEBOOK=" + folder;
        std::vector<char*> environment{notebook.data()};
        for (char** entry = environ; *entry != nullptr; ++entry)
        {
            environment.push_back(*entry);
        }
        environment.push_back(nullptr);
        std::string name = verb;
        std::array<char*, 3> arguments{const_cast<char*>(KERNEL_PEER), name.data(), nullptr};
        EXPECT_EQ(
            0, posix_spawn(&m_process, KERNEL_PEER, nullptr, nullptr, arguments.data(), environment.data()));
    }
    Peer(const Peer&) = delete;
    Peer& operator=(const Peer&) = delete;

    ~Peer()
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

    /// The exit code, or -1 for a process that was killed.
    int Await()
    {
        int status = 0;
        waitpid(m_process, &status, 0);
        m_process = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    pid_t m_process = -1;
};

class NamedObjectsTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        // Processes take their real time.
        simulated::Clock::SetInstant(false);
    }
};

} // namespace

// Whoever opens a board after its service was killed must not find one that nobody serves.
TEST_F(NamedObjectsTest, ObjectEndsWithItsLastHolderKilledOrNot)
{
    const OwnedHandle ready(CreateEventW(nullptr, TRUE, FALSE, L"Ready"));
    Peer peer(Folder(), "hold");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 20000));
    OwnedHandle held(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Global\\Held"));
    EXPECT_NE(nullptr, held);
    peer.Kill();

    EXPECT_NE(nullptr, OwnedHandle(OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Global\\Held")));
    held.reset();
    EXPECT_EQ(nullptr, OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Global\\Held"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
}

TEST_F(NamedObjectsTest, HolderKilledAloneLeavesAFreshName)
{
    const OwnedHandle ready(CreateEventW(nullptr, TRUE, FALSE, L"Ready"));
    Peer peer(Folder(), "hold");
    ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 20000));
    peer.Kill();
    EXPECT_EQ(nullptr, OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Global\\Held"));
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, GetLastError());
    EXPECT_NE(nullptr, OwnedHandle(CreateSemaphoreW(nullptr, 0, 1, L"Global\\Held")));
    EXPECT_EQ(ERROR_SUCCESS, GetLastError());
}

TEST_F(NamedObjectsTest, ProcessKilledAtAnyMomentLeavesNothingStuck)
{
    for (int round = 0; round < 10; ++round)
    {
        const OwnedHandle ready(CreateEventW(nullptr, TRUE, FALSE, L"Ready"));
        Peer peer(Folder(), "churn");
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(ready.get(), 20000));
        usleep(static_cast<useconds_t>(700 * round));
        peer.Kill();
        const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 3, 3, L"ChurnedToo"));
        EXPECT_EQ(ERROR_SUCCESS, GetLastError());
        LONG previous = 0;
        EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(semaphore.get(), 0));
        EXPECT_TRUE(ReleaseSemaphore(semaphore.get(), 1, &previous));
        EXPECT_EQ(2, previous);
    }
}

TEST_F(NamedObjectsTest, SemaphoreSerialisesProcesses)
{
    const OwnedHandle lock(CreateSemaphoreW(nullptr, 1, 0x7FFFFFFF, L"Global\\Lock"));
    const OwnedHandle board(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 1024, L"Global\\Board"));
    void* const view = MapViewOfFile(board.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(LONG));
    ASSERT_NE(nullptr, view);
    Peer first(Folder(), "count");
    Peer second(Folder(), "count");
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    EXPECT_EQ(1000, *static_cast<LONG*>(view));
    EXPECT_TRUE(UnmapViewOfFile(view));
}

TEST_F(NamedObjectsTest, EventsCrossProcesses)
{
    const OwnedHandle stop(CreateEventW(nullptr, TRUE, FALSE, L"Stop"));
    const OwnedHandle request(CreateEventW(nullptr, TRUE, FALSE, L"Request"));
    const OwnedHandle answer(CreateEventW(nullptr, FALSE, FALSE, L"Answer"));
    Peer peer(Folder(), "pass");
    for (int round = 0; round < 100; ++round)
    {
        EXPECT_TRUE(SetEvent(request.get()));
        ASSERT_EQ(WAIT_OBJECT_0, WaitForSingleObject(answer.get(), 20000));
    }
    EXPECT_TRUE(SetEvent(stop.get()));
    EXPECT_EQ(0, peer.Await());
}
