// kernel32/SystemTest.cpp
//
// What the machine decides: version, time, cores; the way of a device control; and what is refused here
// though Windows has it.

#include "kernel32/Affinity.h"
#include "kernel32/Devices.h"
#include "kernel32/OwnedHandle.h"
#include "notebook/Machine.h"
#include "notebook/PlugInModule.h"
#include "notebook/Text.h"
#include "notebook/Trace.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>
#include <tuple>

namespace
{

using simulated::Machine;
using SystemTest = NotebookTest;

/// Answers the control 1 with its input turned round, any other with an error after it has written.
class MirrorDevice : public simulated::Device
{
public:
    DWORD Control(DWORD code, const void* in, DWORD inSize, void* out, DWORD outSize,
                  DWORD& returned) override
    {
        returned = std::min(inSize, outSize);
        std::reverse_copy(static_cast<const BYTE*>(in), static_cast<const BYTE*>(in) + returned,
                          static_cast<BYTE*>(out));
        return code == 1 ? ERROR_SUCCESS : ERROR_BUSY;
    }
};

simulated::Outcome<std::shared_ptr<simulated::Object>> OpenMirror(std::string_view path, DWORD access, DWORD,
                                                                  const simulated::PlatformCall&)
{
    if (path != "\\\\.\\Mirror")
    {
        return {nullptr, ERROR_FILE_NOT_FOUND};
    }
    if ((access & GENERIC_WRITE) != 0)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    return {std::make_shared<MirrorDevice>(), ERROR_SUCCESS};
}

const simulated::devices::Registration kMirror(&OpenMirror);

} // namespace

TEST_F(SystemTest, VersionComesFromTheMachine)
{
    const std::tuple<DWORD, DWORD, DWORD, DWORD, DWORD, const char*> cases[] = {
        {5, 1, 2600, 3, 0x0A280105, "Service Pack 3"},
        {6, 0, 6000, 0, 0x17700006, ""},
        {10, 0, 19045, 0, 0x4A65000A, ""}};
    EXPECT_EQ(0x0A280105U, GetVersion());
    for (const auto& [major, minor, build, servicePack, packed, text] : cases)
    {
        Machine::WriteNumber("Machine", "Major", major);
        Machine::WriteNumber("Machine", "Minor", minor);
        Machine::WriteNumber("Machine", "Build", build);
        Machine::WriteNumber("Machine", "ServicePack", servicePack);
        EXPECT_EQ(packed, GetVersion());
        OSVERSIONINFOEXW information;
        std::memset(&information, 0xEE, sizeof information);
        information.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
        auto* const plain = reinterpret_cast<OSVERSIONINFOW*>(&information);
        EXPECT_TRUE(GetVersionExW(plain));
        EXPECT_EQ(major, information.dwMajorVersion);
        EXPECT_EQ(minor, information.dwMinorVersion);
        EXPECT_EQ(build, information.dwBuildNumber);
        EXPECT_EQ(text, simulated::ToUtf8(information.szCSDVersion));
        EXPECT_EQ(0xEEEE, information.wServicePackMajor);
        information.dwOSVersionInfoSize = sizeof information;
        EXPECT_TRUE(GetVersionExW(plain));
        EXPECT_EQ(servicePack, information.wServicePackMajor);
        information.dwOSVersionInfoSize = sizeof information + 1;
        EXPECT_FALSE(GetVersionExW(plain));
    }
}

TEST_F(SystemTest, DeviceGivesBackNoMoreThanItAnswers)
{
    const simulated::PlatformCall call(simulated::CallClass::Driver, "CreateFileW", nullptr);
    EXPECT_EQ(ERROR_ACCESS_DENIED, simulated::devices::Open("\\\\.\\Mirror", GENERIC_WRITE, 0, call).error);
    EXPECT_EQ(ERROR_FILE_NOT_FOUND, simulated::devices::Open("\\\\.\\Other", GENERIC_READ, 0, call).error);
    const OwnedHandle device(simulated::HandleTable::Insert(
        simulated::devices::Open("\\\\.\\Mirror", GENERIC_READ, 0, call).value, call));
    const OwnedHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    OVERLAPPED overlapped{};
    constexpr DWORD kInputSize = 3;
    // One buffer serves both ways; what it holds afterwards.
    const std::tuple<HANDLE, LPOVERLAPPED, const char*, DWORD, long, bool> cases[] = {
        {device.get(), nullptr, "cbad", 1, ERROR_SUCCESS, true},
        {device.get(), nullptr, "abcd", 2, ERROR_BUSY, true},
        {device.get(), nullptr, "abcd", 1, ERROR_NOACCESS, false},
        {device.get(), &overlapped, "abcd", 1, ERROR_INVALID_PARAMETER, true},
        {event.get(), nullptr, "abcd", 1, ERROR_INVALID_FUNCTION, true},
        {nullptr, nullptr, "abcd", 1, ERROR_INVALID_HANDLE, true}};
    for (const auto& [handle, overlapping, expected, code, error, hasInput] : cases)
    {
        char buffer[] = "abcd";
        DWORD returned = 0;
        EXPECT_EQ(error, ErrorOf(DeviceIoControl(handle, code, hasInput ? buffer : nullptr, kInputSize,
                                                 buffer, 4, &returned, overlapping)));
        EXPECT_STREQ(expected, buffer);
        EXPECT_EQ(error == ERROR_SUCCESS ? kInputSize : 0, returned);
    }
    char buffer[4];
    EXPECT_EQ(ERROR_INVALID_PARAMETER,
              ErrorOf(DeviceIoControl(device.get(), 1, nullptr, 0, buffer, 4, nullptr, nullptr)));
}

TEST_F(SystemTest, InstantClockShortensTimeOutsAndMovesOn)
{
    const OwnedHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const DWORD before = GetTickCount();
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(event.get(), 4000));
    Sleep(60000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_GE(GetTickCount() - before, 64000U);
}

TEST_F(SystemTest, ThreadStaysOnTheCoreItWasGiven)
{
    Machine::WriteNumber("Processor", "Cores", 4);
    Machine::WriteNumber("Processor", "ProcessMask", 0xE);
    DWORD_PTR process = 0;
    DWORD_PTR machine = 0;
    EXPECT_TRUE(GetProcessAffinityMask(GetCurrentProcess(), &process, &machine));
    EXPECT_EQ(0xEU, process);
    EXPECT_EQ(0xFU, machine);
    std::thread(
        []
        {
            EXPECT_EQ(1U, simulated::CurrentCore());
            EXPECT_EQ(0xEU, SetThreadAffinityMask(GetCurrentThread(), 8));
            EXPECT_EQ(3U, simulated::CurrentCore());
            for (const DWORD_PTR refused : {0U, 1U, 0x18U})
            {
                EXPECT_EQ(ERROR_INVALID_PARAMETER,
                          ErrorOf(SetThreadAffinityMask(GetCurrentThread(), refused) != 0U));
            }
            EXPECT_EQ(8U, SetThreadAffinityMask(GetCurrentThread(), 4));
        })
        .join();
    EXPECT_EQ(1U, simulated::CurrentCore());
}

TEST_F(SystemTest, WhatIsntServedIsRefused)
{
    const OwnedHandle event(CreateEventW(nullptr, TRUE, TRUE, nullptr));
    const HANDLE both[] = {event.get(), event.get()};
    EXPECT_EQ(ERROR_NOT_SUPPORTED, ErrorOf(WaitForMultipleObjects(2, both, TRUE, 0) != WAIT_FAILED));
    const LPTHREAD_START_ROUTINE routine = [](LPVOID) -> DWORD { return 0; };
    EXPECT_EQ(ERROR_NOT_SUPPORTED,
              ErrorOf(CreateThread(nullptr, 0, routine, nullptr, CREATE_SUSPENDED, nullptr) != nullptr));
    EXPECT_EQ(ERROR_NOT_SUPPORTED,
              ErrorOf(CreateFileMappingW(event.get(), nullptr, PAGE_READWRITE, 0, 8, nullptr) != nullptr));
}

TEST_F(SystemTest, BlocksOfThePlugInAreCountedAndCanBeRefused)
{
    simulated::SetPlugInRange(nullptr, reinterpret_cast<const void*>(~std::uintptr_t{0}));
    void* const block = HeapAlloc(GetProcessHeap(), 0, 10);
    EXPECT_EQ(1u, simulated::Leaks::Count());
    simulated::Faults::Inject("HeapAlloc", 1, ERROR_NOT_ENOUGH_MEMORY);
    SetLastError(77);
    EXPECT_EQ(nullptr, HeapAlloc(GetProcessHeap(), 0, 10));
    EXPECT_EQ(77U, GetLastError());
    EXPECT_TRUE(HeapFree(GetProcessHeap(), 0, block));
    EXPECT_EQ(0u, simulated::Leaks::Count());
    simulated::SetPlugInRange(nullptr, nullptr);
}
