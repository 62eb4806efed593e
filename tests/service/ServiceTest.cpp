// tests/service/ServiceTest.cpp
//
// The service as the plug-in sees it: over the boards, in a process of its own.

#include "service/ServiceProcess.h"
#include "support/NotebookTest.h"

#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlBase.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"
#include "notebook/Adapters.h"
#include "notebook/Clock.h"
#include "notebook/DeviceTree.h"

#include <cfgmgr32.h>
#include <setupapi.h>

#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>

namespace
{

using simulated::Adapters;
using simulated::DeviceTree;

constexpr ULONG kLongEnough = 10000;

class Caller : public CORVLBase
{
public:
    ULONG GetVersion() noexcept override
    {
        return kClassVersion;
    }
};

class ServiceTest : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        // Two processes keep time together only in real time.
        simulated::Clock::SetInstant(false);
    }

    static LONG Call(unsigned code, const wchar_t* text, ULONG value, ULONG timeout = kLongEnough)
    {
        Caller caller;
        IpbDataHeader reply{};
        return caller.ServiceCall(code, text, value, &reply, timeout);
    }

    /// "CurrentPwrSchemeID", or -1 without one.
    static int StoredScheme()
    {
        owners::Key key;
        RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, key.Receive());
        DWORD scheme = 0;
        DWORD type = 0;
        DWORD size = sizeof scheme;
        const LSTATUS error = RegQueryValueExW(key.Get(), L"CurrentPwrSchemeID", nullptr, &type,
                                               reinterpret_cast<BYTE*>(&scheme), &size);
        return error == ERROR_SUCCESS && type == REG_DWORD ? static_cast<int>(scheme) : -1;
    }
};

TEST_F(ServiceTest, AnAppliedSchemeIsStoredBeforeTheListenerIsWoken)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const owners::Handle listener(CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent"));
    int storedWhenWoken = -2;
    std::thread waiting(
        [&]
        {
            WaitForSingleObject(listener.Get(), kLongEnough);
            storedWhenWoken = StoredScheme();
        });
    EXPECT_EQ(0, Call(3, L"C:\\Cfg", 4));
    waiting.join();
    EXPECT_EQ(4, storedWhenWoken);
    EXPECT_TRUE(service.WaitFor("request 3 (scheme applied), value 4, text \"C:\\Cfg\""));
}

TEST_F(ServiceTest, ASchemeIsStoredWithoutAListenerToo)
{
    ServiceProcess service(Folder(), {"--verbose"});
    ASSERT_TRUE(service.IsServing());
    EXPECT_EQ(0, Call(3, L"", 17));
    EXPECT_EQ(17, StoredScheme());
    EXPECT_TRUE(service.WaitFor("no host waits"));
    EXPECT_TRUE(service.WaitFor("answered code 1, value 0x0"));
}

TEST_F(ServiceTest, ItCanBeToldToMisbehave)
{
    struct Row
    {
        std::vector<std::string> options;
        ULONG timeout;
        LONG result;
        int stored;
        int leastMilliseconds;
    };
    const Row rows[] = {
        {{"--refuse"}, kLongEnough, kGeneralFailure, -1, 0},
        {{"--silent"}, 300, kGeneralFailure, -1, 300},
        {{"--slow", "300"}, kLongEnough, 0, 5, 300},
        {{"--slow", "1000"}, 200, kGeneralFailure, 5, 200},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.options.front());
        Recreate({});
        ServiceProcess service(Folder(), row.options);
        ASSERT_TRUE(service.IsServing());
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(row.result, Call(3, L"x", 5, row.timeout));
        const auto passed = std::chrono::steady_clock::now() - begin;
        EXPECT_GE(passed, std::chrono::milliseconds(row.leastMilliseconds));
        EXPECT_TRUE(service.WaitFor("request 3"));
        if (row.stored != -1)
        {
            EXPECT_TRUE(service.WaitFor("stored"));
        }
        EXPECT_EQ(row.stored, StoredScheme());
    }
}

TEST_F(ServiceTest, ADeviceIsSwitchedByItsInstanceId)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    const std::string adapter = Adapters::All().front();
    std::vector<wchar_t> instanceId(adapter.begin(), adapter.end());
    instanceId.push_back(0);
    ASSERT_EQ(0u, DeviceTree::StateOf(adapter).problem);
    EXPECT_EQ(0, Call(2, instanceId.data(), DICS_DISABLE));
    EXPECT_EQ(DWORD{CM_PROB_DISABLED}, DeviceTree::StateOf(adapter).problem);
    EXPECT_EQ(0, Call(2, instanceId.data(), DICS_ENABLE));
    EXPECT_EQ(0u, DeviceTree::StateOf(adapter).problem);

    EXPECT_EQ(kGeneralFailure, Call(2, L"ROOT\\NOTHING\\0000", DICS_DISABLE));
    EXPECT_TRUE(service.WaitFor("device change gave 0x80004005"));
}

/// A request as bytes on the board, past every check of the plug-in; the answer's header.
IpbDataHeader Post(const std::vector<BYTE>& bytes)
{
    CInterProcessBoard parameters;
    CInterProcessBoard results;
    EXPECT_EQ(0, parameters.Reset(L"ORVL_IPB_PARA", 1024, 0, 0));
    EXPECT_EQ(0, results.Reset(L"ORVL_IPB_RSLT", 1024, 0, 0));
    std::vector<BYTE> copy = bytes;
    EXPECT_EQ(0, parameters.Paste(0, copy.data(), static_cast<LONG>(copy.size())));
    results.Flag(1);
    parameters.Flag(0);
    EXPECT_EQ(1, results.IsDataAvailble(kLongEnough));
    IpbDataHeader answer{};
    EXPECT_EQ(0, results.Read(0, &answer, sizeof answer));
    return answer;
}

std::vector<BYTE> RequestBytes(DWORD code, DWORD size, wchar_t fill)
{
    std::vector<BYTE> bytes(1024);
    const IpbDataHeader header = {code, 9, size};
    std::memcpy(bytes.data(), &header, sizeof header);
    for (std::size_t offset = sizeof header; offset + sizeof fill <= bytes.size(); offset += sizeof fill)
    {
        std::memcpy(bytes.data() + offset, &fill, sizeof fill);
    }
    return bytes;
}

TEST_F(ServiceTest, MalformedRequestsGetAFailureNoticeAndHarmNothing)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    struct Row
    {
        DWORD code, size;
        wchar_t fill;
        LONG reason;
    };
    const Row rows[] = {
        {3, 0, 0, kBadArgument},          {3, 1, 0, kBadArgument},
        {3, 3, 0, kBadArgument},          {3, 1014, 0, kBadArgument},
        {3, 0xFFFFFFFF, 0, kBadArgument}, {3, 0x80000000, L'x', kBadArgument},
        {3, 8, L'x', kBadArgument},       {3, 1012, L'x', kBadArgument},
        {2, 1012, 0xD800, kBadArgument},  {0, 2, 0, kNotSupported},
        {4, 2, 0, kNotSupported},         {0xFFFFFFFF, 1012, 0xFFFF, kNotSupported},
    };
    for (const Row& row : rows)
    {
        const IpbDataHeader answer = Post(RequestBytes(row.code, row.size, row.fill));
        EXPECT_EQ(0u, answer.code) << row.code << ", " << row.size;
        EXPECT_EQ(static_cast<DWORD>(row.reason), answer.value);
    }
    EXPECT_EQ(-1, StoredScheme());

    // The longest text that fits.
    EXPECT_EQ(1u, Post(RequestBytes(3, 1012, 0)).code);
    EXPECT_EQ(9, StoredScheme());
}

TEST_F(ServiceTest, AKilledServiceLeavesRoomForTheNext)
{
    {
        ServiceProcess service(Folder(), {"--silent"});
        ASSERT_TRUE(service.IsServing());
        std::thread killer(
            [&]
            {
                EXPECT_TRUE(service.WaitFor("left without an answer"));
                service.Signal(SIGKILL);
            });
        EXPECT_EQ(kGeneralFailure, Call(3, L"x", 1, 500));
        killer.join();
        EXPECT_EQ(-1, service.ExitCode());
    }
    EXPECT_EQ(kGeneralFailure, Call(3, L"x", 1));
    ServiceProcess next(Folder(), {});
    ASSERT_TRUE(next.IsServing());
    EXPECT_EQ(0, Call(3, L"x", 2));
    EXPECT_EQ(2, StoredScheme());
}

TEST_F(ServiceTest, ItEndsInEachOfItsWays)
{
    struct Row
    {
        const char* name;
        std::vector<std::string> options;
        void (*end)(ServiceProcess& service, const std::string& notebook);
    };
    const Row rows[] = {
        {"stop",
         {},
         [](ServiceProcess&, const std::string& notebook)
         { EXPECT_EQ(0, ServiceProcess(notebook, {"--stop"}).ExitCode()); }},
        {"closed input", {}, [](ServiceProcess& service, const std::string&) { service.CloseInput(); }},
        {"Ctrl-C", {}, [](ServiceProcess& service, const std::string&) { service.Signal(SIGINT); }},
        {"one request",
         {"--once"},
         [](ServiceProcess&, const std::string&) { EXPECT_EQ(0, Call(3, L"x", 3)); }},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        ServiceProcess service(Folder(), row.options);
        ASSERT_TRUE(service.IsServing());
        row.end(service, Folder());
        EXPECT_EQ(0, service.ExitCode());
        EXPECT_NE(std::string::npos, service.Printed().find("ended\n"));
        EXPECT_EQ(kGeneralFailure, Call(3, L"x", 1));
    }
}

TEST_F(ServiceTest, WhatItCannotDoItSays)
{
    struct Row
    {
        std::vector<std::string> options;
        int exitCode;
        const char* message;
    };
    for (const Row& row :
         {Row{{"--stop"}, 1, "no service is running"}, Row{{"--what"}, 2, "unknown option --what"},
          Row{{"--slow"}, 2, "--slow needs a number"}, Row{{"--slow", "-1"}, 2, "needs a number"},
          Row{{"--slow", "1x"}, 2, "needs a number"}, Row{{"--help"}, 0, "--silent"}})
    {
        ServiceProcess service(Folder(), row.options);
        EXPECT_EQ(row.exitCode, service.ExitCode());
        EXPECT_NE(std::string::npos, service.Printed().find(row.message)) << service.Printed();
    }
    ServiceProcess first(Folder(), {});
    ASSERT_TRUE(first.IsServing());
    ServiceProcess second(Folder(), {});
    EXPECT_EQ(1, second.ExitCode());
    EXPECT_EQ(0, Call(3, L"x", 8));
}

// Callers at the same moment may take each other's answers or find a board busy; the boards outlast that.
TEST_F(ServiceTest, TwoCallersAtOnceLeaveBothBoardsUsable)
{
    ServiceProcess service(Folder(), {});
    ASSERT_TRUE(service.IsServing());
    std::vector<std::thread> callers;
    for (ULONG number = 0; number < 2; ++number)
    {
        callers.emplace_back(
            [number]
            {
                for (int i = 0; i < 25; ++i)
                {
                    Call(3, L"x", number, 200);
                }
            });
    }
    for (std::thread& caller : callers)
    {
        caller.join();
    }
    EXPECT_EQ(0, Call(3, L"x", 6));
    EXPECT_EQ(6, StoredScheme());
}

} // namespace
