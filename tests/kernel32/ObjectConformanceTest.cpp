// kernel32/ObjectConformanceTest.cpp
//
// What events, semaphores, mappings and waits promise within one process, in plain Win32: the simulated
// platform and Windows itself are held to the same tables.

#include "kernel32/OwnedHandle.h"
#include "support/LastError.h"
#include "support/WideText.h"

#include <array>
#include <iterator>
#include <tuple>
#include <utility>

namespace
{

OwnedHandle NewEvent(bool manualReset, bool signalled = false)
{
    return OwnedHandle(CreateEventW(nullptr, manualReset, signalled, nullptr));
}

OwnedHandle NewMapping(DWORD size, LPCWSTR name = nullptr)
{
    return OwnedHandle(CreateFileMappingW(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, size, name));
}

using Opener = HANDLE (*)(LPCWSTR name);

// The kinds of objects that have names.
constexpr std::pair<Opener, Opener> kKinds[] = {
    {[](LPCWSTR name) { return CreateEventW(nullptr, TRUE, FALSE, name); },
     [](LPCWSTR name) { return OpenEventW(EVENT_ALL_ACCESS, FALSE, name); }},
    {[](LPCWSTR name) { return CreateSemaphoreW(nullptr, 1, 1, name); },
     [](LPCWSTR name) { return OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, FALSE, name); }},
    {[](LPCWSTR name) { return NewMapping(8, name).release(); },
     [](LPCWSTR name) { return OpenFileMappingW(SECTION_ALL_ACCESS, FALSE, name); }}};

} // namespace

TEST(ObjectConformance, KindsShareTheirNames)
{
    for (const auto& kind : kKinds)
    {
        const OwnedHandle first(kind.first(L"Global\\Thing"));
        EXPECT_EQ(DWORD{ERROR_SUCCESS}, GetLastError());
        for (const auto& other : kKinds)
        {
            const bool same = &other == &kind;
            const OwnedHandle created(other.first(L"Global\\Thing"));
            EXPECT_EQ(same ? DWORD{ERROR_ALREADY_EXISTS} : DWORD{ERROR_INVALID_HANDLE}, GetLastError());
            EXPECT_EQ(same, created != nullptr);
            EXPECT_EQ(same, OwnedHandle(other.second(L"Global\\Thing")) != nullptr);
        }
    }
}

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

TEST(ObjectConformance, HandlesLimitWhatCanBeDone)
{
    const OwnedHandle mapping = NewMapping(8);
    const OwnedHandle named(CreateEventW(nullptr, TRUE, TRUE, L"Limited"));
    const OwnedHandle noWait(OpenEventW(EVENT_MODIFY_STATE, FALSE, L"Limited"));
    const std::tuple<HANDLE, long, long> cases[] = {
        {named.get(), ERROR_SUCCESS, ERROR_SUCCESS},
        {nullptr, ERROR_INVALID_HANDLE, ERROR_INVALID_HANDLE},
        {mapping.get(), ERROR_ACCESS_DENIED, ERROR_INVALID_HANDLE},
        {noWait.get(), ERROR_ACCESS_DENIED, ERROR_SUCCESS}};
    for (const auto& [handle, waitError, setError] : cases)
    {
        EXPECT_EQ(waitError, ErrorOf(WaitForSingleObject(handle, 0) == WAIT_OBJECT_0)) << setError;
        EXPECT_EQ(setError, ErrorOf(SetEvent(handle))) << waitError;
    }
}

TEST(ObjectConformance, SemaphoreTellsItsCountAndKeepsItsBound)
{
    const OwnedHandle semaphore(CreateSemaphoreW(nullptr, 1, 3, nullptr));
    const std::tuple<LONG, long, LONG> cases[] = {{1, ERROR_SUCCESS, 1},
                                                  {2, ERROR_TOO_MANY_POSTS, -1},
                                                  {0x7FFFFFFF, ERROR_TOO_MANY_POSTS, -1},
                                                  {1, ERROR_SUCCESS, 2}};
    for (const auto& [count, error, expected] : cases)
    {
        LONG previous = -1;
        EXPECT_EQ(error, ErrorOf(ReleaseSemaphore(semaphore.get(), count, &previous)));
        EXPECT_EQ(expected, previous);
    }
    for (const DWORD answer : {WAIT_OBJECT_0, WAIT_OBJECT_0, WAIT_OBJECT_0, DWORD{WAIT_TIMEOUT}})
    {
        EXPECT_EQ(answer, WaitForSingleObject(semaphore.get(), 0));
    }
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ErrorOf(CreateSemaphoreW(nullptr, 4, 3, nullptr) != nullptr));
}

TEST(ObjectConformance, ViewsAreBoundedByWholePages)
{
    const OwnedHandle made = NewMapping(0x10001);
    const std::tuple<HANDLE, SIZE_T, long> cases[] = {{made.get(), 0x11000, ERROR_SUCCESS},
                                                      {made.get(), 0x11001, ERROR_ACCESS_DENIED},
                                                      {nullptr, 1, ERROR_INVALID_HANDLE}};
    for (const auto& [mapping, size, error] : cases)
    {
        void* const view = MapViewOfFile(mapping, FILE_MAP_ALL_ACCESS, 0, 0, size);
        EXPECT_EQ(error, ErrorOf(view != nullptr)) << size;
        EXPECT_TRUE(view == nullptr || UnmapViewOfFile(view));
    }
    EXPECT_EQ(ERROR_INVALID_ADDRESS, ErrorOf(UnmapViewOfFile(&cases)));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, ErrorOf(NewMapping(0) != nullptr));
}
