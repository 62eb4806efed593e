// tests/scheme/SchemeTest.h
//
// An engine on a notebook with the reference installation, acting for the user alice.
#pragma once

#include "acceptance/Seeding.h"
#include "base/Trace.h"
#include "scheme/SchemeEx.h"
#include "support/NotebookTest.h"

#include <functional>
#include <string>
#include <vector>

/// What reading a missing key returns.
constexpr const char* kAbsent = "(absent)";

/// Row 1 of the reference installation.
constexpr GUID kBalanced = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};

/// A record's bytes, padding included, to be compared.
template <class Record>
std::string BytesOf(const Record& record)
{
    return {reinterpret_cast<const char*>(&record), sizeof record};
}

/// The engine with its protected operations.
class Engine : public CSchemeEx
{
public:
    using CSchemeEx::FindPwrScheme;
    using CSchemeEx::GetHiberTimeFromStandbyTime;
    using CSchemeEx::GuidFromString;
    using CSchemeEx::GuidIntoString;
    using CSchemeEx::ParseVarName;
    using CSchemeEx::ValidateData;
};

class SchemeTest : public NotebookTest
{
protected:
    explicit SchemeTest(DWORD major = 5);

    void SetUp() override;

    /// Fills the engine's strings with those of an account.
    static void ActFor(Engine& target, const std::string& user);
    static std::string SidOf(const std::string& user)
    {
        return simulated::Accounts::Find(user).value().sid;
    }

    /// A user's configuration folder, without a final backslash.
    static std::string FolderOf(const std::string& user)
    {
        return simulated::Accounts::Find(user).value().profile +
               "\\Local Settings\\Application Data\\Kelvo\\ORVL\\Cfg";
    }

    // The files, by path.

    static constexpr const char* kRoot = "C:\\Program Files\\Kelvo\\ORVL\\Cfg\\ORVLCfg.ini";
    static constexpr const char* kCatalogue = "C:\\Program Files\\Kelvo\\ORVL\\Cfg\\PowerSetting.ini";
    static std::string Values()
    {
        return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\PowerSchemes.ini";
    }
    static std::string Users()
    {
        return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\UserSchemes.ini";
    }
    static std::string Display(const std::string& user)
    {
        return FolderOf(user) + "\\OrvProfile.ini";
    }

    /// The value of a key in a scheme's section of the scheme values file.
    static std::string Stored(int scheme, const std::string& key)
    {
        return seeding::GetKey(Values(), "Scheme " + std::to_string(scheme), key);
    }
    static bool Store(int scheme, const std::string& key, const std::string& value)
    {
        return seeding::SetKey(Values(), "Scheme " + std::to_string(scheme), key, value);
    }

    using Lines = std::vector<std::string>;
    using Work = std::function<void()>;

    /// The lines that the engine logs while `work` runs.
    static Lines LinesOf(const Work& work);

    /// The names of the platform functions that the engine calls while `work` runs, in order.
    static Lines CallsOf(const Work& work);

    /// Runs steps and compares their results: "get 3 ac CpuSpeed -> 50; set 3 dc CpuSpeed = 75 -> 1". Other
    /// steps are "find 3", "delete 3", "delete 3 asUser", "active" and "next" (`GetPwrSchemeMaxIndex`).
    void Run(const std::string& steps);
    int ResultOf(const std::string& work);

    static POWER_POLICY Policy(int scheme);
    static MACHINE_PROCESSOR_POWER_POLICY Processor(int scheme);

    Engine engine;
};

/// A test class on a notebook of the Vista generation.
template <class Test>
class OnVista : public Test
{
protected:
    OnVista() : Test(6)
    {
    }
};
