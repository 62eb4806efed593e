// kernel32/SystemTest.cpp
//
// The version of the system and the way of a device control.

#include "kernel32/KernelTest.h"

#include "kernel32/Devices.h"
#include "notebook/Text.h"

#include <algorithm>
#include <cstring>

namespace
{

using simulated::Machine;
using SystemTest = KernelTest;

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
    struct Case
    {
        DWORD major;
        DWORD minor;
        DWORD build;
        DWORD servicePack;
        DWORD packed;
        const char* text;
    };
    const Case cases[] = {{5, 1, 2600, 3, 0x0A280105, "Service Pack 3"},
                          {6, 0, 6000, 0, 0x17700006, ""},
                          {10, 0, 19045, 0, 0x4A65000A, ""}};
    EXPECT_EQ(cases[0].packed, GetVersion());
    for (const Case& row : cases)
    {
        Machine::WriteNumber("Machine", "Major", row.major);
        Machine::WriteNumber("Machine", "Minor", row.minor);
        Machine::WriteNumber("Machine", "Build", row.build);
        Machine::WriteNumber("Machine", "ServicePack", row.servicePack);
        EXPECT_EQ(row.packed, GetVersion());
        OSVERSIONINFOEXW information;
        std::memset(&information, 0xEE, sizeof information);
        information.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
        EXPECT_TRUE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&information)));
        EXPECT_EQ(row.major, information.dwMajorVersion);
        EXPECT_EQ(row.minor, information.dwMinorVersion);
        EXPECT_EQ(row.build, information.dwBuildNumber);
        EXPECT_EQ(row.text, simulated::ToUtf8(information.szCSDVersion));
        EXPECT_EQ(0xEEEE, information.wServicePackMajor);
        information.dwOSVersionInfoSize = sizeof information;
        EXPECT_TRUE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&information)));
        EXPECT_EQ(row.servicePack, information.wServicePackMajor);
        information.dwOSVersionInfoSize = sizeof information + 1;
        EXPECT_FALSE(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&information)));
        EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, GetLastError());
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
    struct Case
    {
        HANDLE device;
        DWORD code;
        bool hasInput;
        DWORD inputSize;
        LPOVERLAPPED overlapped;
        DWORD error;
        const char* buffer; ///< one buffer serves both ways
    };
    const Case cases[] = {{device.get(), 1, true, 3, nullptr, ERROR_SUCCESS, "cbad"},
                          {device.get(), 2, true, 3, nullptr, ERROR_BUSY, "abcd"},
                          {device.get(), 1, false, 3, nullptr, ERROR_NOACCESS, "abcd"},
                          {device.get(), 1, true, 3, &overlapped, ERROR_INVALID_PARAMETER, "abcd"},
                          {event.get(), 1, true, 3, nullptr, ERROR_INVALID_FUNCTION, "abcd"},
                          {nullptr, 1, true, 3, nullptr, ERROR_INVALID_HANDLE, "abcd"}};
    for (const Case& row : cases)
    {
        char buffer[] = "abcd";
        DWORD returned = 0;
        SetLastError(ERROR_SUCCESS);
        EXPECT_EQ(row.error == ERROR_SUCCESS,
                  DeviceIoControl(row.device, row.code, row.hasInput ? buffer : nullptr, row.inputSize,
                                  buffer, 4, &returned, row.overlapped));
        EXPECT_EQ(row.error, GetLastError());
        EXPECT_STREQ(row.buffer, buffer);
        EXPECT_EQ(row.error == ERROR_SUCCESS ? row.inputSize : 0, returned);
    }
    char buffer[4];
    EXPECT_FALSE(DeviceIoControl(device.get(), 1, nullptr, 0, buffer, 4, nullptr, nullptr));
    EXPECT_EQ(ERROR_INVALID_PARAMETER, GetLastError());
}
