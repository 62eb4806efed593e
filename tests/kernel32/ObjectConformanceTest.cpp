// kernel32/ObjectConformanceTest.cpp
//
// How events, semaphores, mappings and waits behave within one process, in plain Win32: the simulated
// platform and Windows itself are held to the same tables.

#include "kernel32/OwnedHandle.h"
#include "support/LastError.h"
#include "support/WideText.h"

#include <utility>

TEST(ObjectConformance, NamesAreToldApart)
{
    const OwnedHandle plain(CreateEventW(nullptr, TRUE, FALSE, L"Ring 1/2"));
    const OwnedHandle global(CreateEventW(nullptr, TRUE, FALSE, L"Global\\Bell"));
    const std::pair<LPCWSTR, long> cases[] = {{L"Ring 1/2", ERROR_SUCCESS},
                                              {L"Local\\Ring 1/2", ERROR_SUCCESS},
                                              {L"Global\\Ring 1/2", ERROR_FILE_NOT_FOUND},
                                              {L"Ring 1_2", ERROR_FILE_NOT_FOUND},
                                              {L"ring 1/2", ERROR_FILE_NOT_FOUND},
                                              {L"Bell", ERROR_FILE_NOT_FOUND},
                                              {L"Folder\\Bell", ERROR_PATH_NOT_FOUND},
                                              {nullptr, ERROR_INVALID_PARAMETER}};
    for (const auto& [name, error] : cases)
    {
        const OwnedHandle opened(OpenEventW(EVENT_ALL_ACCESS, FALSE, name));
        EXPECT_EQ(error, ErrorOf(opened != nullptr)) << (name == nullptr ? "null" : Utf8(name));
    }
}

TEST(ObjectConformance, FirstSignalledOfSeveralCountsAndOnlyItIsTaken)
{
    const OwnedHandle manual(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const OwnedHandle automatic(CreateEventW(nullptr, FALSE, TRUE, nullptr));
    const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 2, 2, nullptr));
    const HANDLE awaited[] = {manual.get(), automatic.get(), semaphore.get()};
    for (const DWORD answer :
         {DWORD{WAIT_OBJECT_0} + 1, DWORD{WAIT_OBJECT_0} + 2, DWORD{WAIT_OBJECT_0} + 2, DWORD{WAIT_TIMEOUT}})
    {
        EXPECT_EQ(answer, WaitForMultipleObjects(3, awaited, FALSE, 0));
    }
    SetEvent(automatic.get());
    SetEvent(manual.get());
    EXPECT_EQ(WAIT_OBJECT_0, WaitForMultipleObjects(3, awaited, FALSE, 0));
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(automatic.get(), 0));
}

TEST(ObjectConformance, HandlesLimitWhatCanBeDone)
{
    const OwnedHandle named(CreateEventW(nullptr, TRUE, TRUE, L"Limited"));
    const OwnedHandle noWait(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"Limited"));
    EXPECT_TRUE(SetEvent(noWait.get()));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(WaitForSingleObject(noWait.get(), 0) == WAIT_OBJECT_0));
}

TEST(ObjectConformance, SemaphoreKeepsItsBound)
{
    const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 1, 3, nullptr));
    LONG previous = -1;
    EXPECT_EQ(ERROR_TOO_MANY_POSTS, ErrorOf(ReleaseSemaphore(semaphore.get(), 3, &previous)));
    EXPECT_EQ(-1, previous);
    EXPECT_TRUE(ReleaseSemaphore(semaphore.get(), 2, &previous));
    EXPECT_EQ(1, previous);
    for (const DWORD answer : {WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_OBJECT_0, DWORD{WAIT_TIMEOUT}})
    {
        EXPECT_EQ(answer, WaitForSingleObject(semaphore.get(), 0));
    }
}

TEST(ObjectConformance, ViewsAreBoundedByWholePages)
{
    const OwnedHandle mapping(
        CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, 0x10001, nullptr));
    for (const auto& [size, error] : {std::pair(0x11000U, ERROR_SUCCESS), {0x11001U, ERROR_ACCESS_DENIED}})
    {
        void* const view = MapViewOfFile(mapping.get(), FILE_MAP_ALL_ACCESS, 0, 0, size);
        EXPECT_EQ(error, ErrorOf(view != nullptr)) << size;
        EXPECT_TRUE(view == nullptr || UnmapViewOfFile(view));
    }
}
