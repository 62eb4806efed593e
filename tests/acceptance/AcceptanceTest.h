// tests/acceptance/AcceptanceTest.h
//
// The bases of the acceptance tests: a machine for each test, and one on each generation of Windows.
#pragma once

#include "acceptance/Environment.h"
#include "acceptance/Host.h"
#include "acceptance/Seeding.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <thread>

class AcceptanceTest : public testing::Test
{
protected:
    /// A path in the folder of the installation's files.
    static std::string InstallationFile(const std::string& name)
    {
        return seeding::GetText(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVL", "CfgPath").value_or("") + name;
    }

    /// A path in the configuration folder of the running account.
    static std::string ProfileFile(const std::string& name)
    {
        return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\" + name;
    }

    /// Signals that another party has applied a scheme. False when nobody listens.
    static bool SignalApplied()
    {
        const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
        const bool signalled = event != nullptr && SetEvent(event);
        CloseHandle(event);
        return signalled;
    }
    static bool SignalArrives(Host& host)
    {
        return SignalApplied() && host.WaitForEvent().has_value();
    }
    static bool IsListenedFor()
    {
        const HANDLE event = OpenEventW(EVENT_ALL_ACCESS, FALSE, L"ApplySchemeEvent");
        CloseHandle(event);
        return event != nullptr;
    }

    /// Waits for up to ten seconds; a condition that never comes fails the test and doesn't hold it up for
    /// good.
    template <class Condition>
    static void WaitUntil(Condition condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
        while (!condition() && std::chrono::steady_clock::now() < end)
        {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        EXPECT_TRUE(condition());
    }

    environment::Machine machine;
};

/// The parameter is the major version of Windows: `testing::ValuesIn(environment::Generations())`.
class GenerationTest : public AcceptanceTest, public testing::WithParamInterface<DWORD>
{
protected:
    void SetUp() override
    {
        environment::Recreate(GetParam());
        host.emplace();
    }

    static bool IsXp()
    {
        return GetParam() == 5;
    }

    std::optional<Host> host;
};
