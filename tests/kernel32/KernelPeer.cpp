// kernel32/KernelPeer.cpp
//
// kernel_peer VERB, on the notebook of SIM_NOTEBOOK: the second process of the tests on named objects. Verbs:
//
//     hold     makes the event "Held", sets "Ready" and waits for ever
//     churn    sets "Ready", then makes, uses and closes objects for ever
//     count    adds 1 to the number on the mapping "Board" 500 times, each time under the semaphore "Lock"
//     pass     waits for "Request" or "Stop" and answers each request on "Answer", until it is told to stop

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace
{

int Fail(const char* what)
{
    std::fprintf(stderr, "kernel_peer: %s failed with %u\n", what, GetLastError());
    return 1;
}

bool Announce()
{
    const HANDLE ready = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Ready");
    return ready != nullptr && SetEvent(ready);
}

int Hold()
{
    const HANDLE held = CreateEventW(nullptr, TRUE, FALSE, L"Global\\Held");
    if (held == nullptr || !Announce())
    {
        return Fail("hold");
    }
    WaitForSingleObject(held, INFINITE);
    return 0;
}

int Churn()
{
    if (!Announce())
    {
        return Fail("churn");
    }
    while (true)
    {
        const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, L"Churned");
        const HANDLE semaphore = CreateSemaphoreW(nullptr, 1, 5, L"ChurnedToo");
        if (event == nullptr || semaphore == nullptr)
        {
            return Fail("churn");
        }
        SetEvent(event);
        WaitForSingleObject(semaphore, 0);
        CloseHandle(event);
        CloseHandle(semaphore);
    }
}

int Count()
{
    const HANDLE lock = OpenSemaphoreW(SEMAPHORE_ALL_ACCESS, FALSE, L"Global\\Lock");
    const HANDLE board = OpenFileMappingW(SECTION_ALL_ACCESS, FALSE, L"Global\\Board");
    auto* number = static_cast<volatile LONG*>(MapViewOfFile(board, SECTION_ALL_ACCESS, 0, 0, sizeof(LONG)));
    if (lock == nullptr || number == nullptr)
    {
        return Fail("count");
    }
    for (int round = 0; round < 500; ++round)
    {
        if (WaitForSingleObject(lock, INFINITE) != WAIT_OBJECT_0)
        {
            return Fail("count");
        }
        *number = *number + 1;
        ReleaseSemaphore(lock, 1, nullptr);
    }
    return 0;
}

int Pass()
{
    const HANDLE awaited[] = {OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Stop"),
                              OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Request")};
    const HANDLE answer = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"Answer");
    DWORD which = WAIT_FAILED;
    while ((which = WaitForMultipleObjects(2, awaited, FALSE, INFINITE)) == WAIT_OBJECT_0 + 1)
    {
        ResetEvent(awaited[1]);
        SetEvent(answer);
    }
    return which == WAIT_OBJECT_0 ? 0 : Fail("pass");
}

struct Verb
{
    const char* name;
    int (*run)();
};

constexpr Verb kVerbs[] = {{"hold", Hold}, {"churn", Churn}, {"count", Count}, {"pass", Pass}};

} // namespace

int main(int count, char** arguments)
{
    for (const Verb& verb : kVerbs)
    {
        if (count == 2 && std::strcmp(arguments[1], verb.name) == 0)
        {
            return verb.run();
        }
    }
    std::fprintf(stderr, "kernel_peer: no such verb\n");
    return 2;
}
