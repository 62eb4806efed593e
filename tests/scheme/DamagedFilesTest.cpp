// tests/scheme/DamagedFilesTest.cpp
//
// Files that hold anything: no result but the documented ones, no write outside a buffer, no endless walk.

#include "foundation/EntryLimit.h"
#include "scheme/SchemeTest.h"

#include <algorithm>
#include <random>

using namespace simulated;

namespace
{

std::string RandomBytes(std::size_t size)
{
    std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): a failure must be repeatable
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

class DamagedFiles : public SchemeTest, public testing::WithParamInterface<unsigned>
{
protected:
    DamagedFiles() : SchemeTest(GetParam())
    {
    }

    /// Every operation that reads files once; the results are a failure's or a number from the file.
    void UseEverything()
    {
        wchar_t buffer[8];
        PWRSET set{};
        GUID guid{};
        engine.GetPwrVariableAll(set, 1);
        engine.SetPwrVariable(set);
        engine.GetPwrVariableOptCount(L"Wifi");
        engine.GetPwrVariableOptDesc(L"Wifi", 0, buffer, 8);
        engine.GetPwrVariableName(L"Wifi", buffer, 8);
        engine.ValidateData(L"Wifi", 1);
        engine.GetHiberTimeFromStandbyTime(60);
        engine.SchemeIndexToGuid(1, &guid);
        engine.SchemeGuidToIndex(&guid);
        engine.FindPwrScheme(L"name", L"alice");
        engine.DeletePwrScheme(42, L"alice");
        engine.AddtoUserScheme(L"name", L"alice", 42);
        engine.GetActivePwrScheme(0);
    }
};

TEST_P(DamagedFiles, GarbageIsSurvived)
{
    const std::string longLines = "[Scheme 1]\r\nWifi=" + std::string(70000, '9') +
                                  "\r\nGUID=" + std::string(5000, '{') + "\r\n[" + std::string(5000, 'x');
    for (const std::string& bytes :
         {RandomBytes(4096), "\xFF\xFE" + RandomBytes(4095), longLines,
          std::string("[Wifi]\r\nOptionNumber=-7\r\n[Schemes]\r\nSchemeMaxIndex=-9\r\n")})
    {
        for (const std::string& file : {Values(), Users(), Catalogue(), Display("alice")})
        {
            const auto before = seeding::ReadBytes(file);
            ASSERT_TRUE(seeding::WriteBytes(file, bytes));
            UseEverything();
            ASSERT_TRUE(seeding::WriteBytes(file, before.value_or("")));
        }
    }
}

TEST_P(DamagedFiles, ALineOfTenMegabytesIsSurvived)
{
    const std::string line =
        "[Wifi]\r\nOptionNumber=1\r\nValueOption0=1\r\nUnit=" + std::string(10 << 20, 'u');
    ASSERT_TRUE(seeding::WriteBytes(Catalogue(), line));
    wchar_t unit[8];
    EXPECT_EQ(7, engine.GetPwrVariableUnit(L"Wifi", unit, 8));
    EXPECT_EQ(1, engine.SetPwrVariable(1, 1, L"Wifi", 1));
}

TEST(EntryLimits, WalksShareWhatIsLeft)
{
    const auto firstSeven = [](int entry) { return entry < 7; };
    EntryLimit limit(2000);
    EXPECT_EQ(0, limit.Take(-5));
    EXPECT_EQ(1000, limit.Take(1000, firstSeven)) << "believed unseen";
    EXPECT_EQ(7, limit.Take(1001, firstSeven)) << "each looked at twice";
    EXPECT_FALSE(limit.WasReached());
    EXPECT_EQ(493, limit.Take(2147483647, [](int) { return true; }));
    EXPECT_TRUE(limit.WasReached());
    EXPECT_EQ(0, limit.Take(1));
    EntryLimit exact(3);
    EXPECT_EQ(3, exact.Take(3));
    EXPECT_FALSE(exact.WasReached());
    EXPECT_EQ(0, exact.Take(1));
    EXPECT_TRUE(exact.WasReached());
}

// A damaged count of two thousand million entries must not keep a request for hours.
TEST_P(DamagedFiles, CountsWithoutEntriesEndSoon)
{
    Trace::Record(false);
    const std::string huge = "2147483647";
    ASSERT_TRUE(seeding::SetKey(Catalogue(), "Wifi", "OptionNumber", huge));
    EXPECT_EQ(0, engine.ValidateData(L"Wifi", 77));
    EXPECT_EQ(1, engine.ValidateData(L"Wifi", 1));
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", huge));
    EXPECT_EQ(-1, engine.FindPwrScheme(L"name", L"alice"));
    ASSERT_TRUE(seeding::SetKey(Values(), "Schemes", "SchemeMaxIndex", huge));
    const GUID unknown{};
    EXPECT_EQ(-1, engine.SchemeGuidToIndex(&unknown));
    EXPECT_GT(10000U, Trace::Count(CallClass::Profile));
}

TEST_P(DamagedFiles, ManyEntriesEndSoon)
{
    Trace::Record(false);
    constexpr const char* kInCatalogue[] = {
        "CpuSpeed", "BacklightLevel",    "LanSpeed",       "Lums",     "Wifi",
        "ThreeG",   "MonitorOffTimeOut", "StandbyTimeOut", "LanStatus"};
    for (const char* const variable : kInCatalogue)
    {
        ASSERT_TRUE(seeding::SetKey(Catalogue(), variable, "OptionNumber", "2147483647"));
    }
    std::string section = '[' + SidOf("alice") + "]\r\nNumber=3000\r\n";
    for (int entry = 0; entry < 3000; ++entry)
    {
        section += "Scheme" + std::to_string(entry) + "=99\r\n";
    }
    ASSERT_TRUE(seeding::WriteBytes(Users(), section));
    Trace::Clear();
    PWRSET set{};
    engine.SetPwrVariable(set);
    EXPECT_GT(20000U, Trace::Count(CallClass::Profile));
    Trace::Clear();
    EXPECT_EQ(0, engine.DeletePwrScheme(42, L"alice"));
    EXPECT_GT(10000U, Trace::Count(CallClass::Profile));
    EXPECT_EQ(-1, engine.AddtoUserScheme(L"name", L"alice", 42));
    EXPECT_EQ("3000", seeding::GetKey(Users(), SidOf("alice"), "Number")) << "cut off";
}

TEST_P(DamagedFiles, ANegativeCountIsNone)
{
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", "-5"));
    EXPECT_EQ(1, engine.AddtoUserScheme(L"name", L"alice", 42));
    EXPECT_EQ("1", seeding::GetKey(Users(), SidOf("alice"), "Number"));
    EXPECT_EQ(42, engine.FindPwrScheme(L"name", L"alice"));
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Scheme0", ""));
    EXPECT_EQ(0, engine.FindPwrScheme(L"name", L"alice"));
}

using XpDamagedFiles = SchemeTest;

// Each count alone would pass.
TEST_F(XpDamagedFiles, AProductOfCountsEndsSoon)
{
    Trace::Record(false);
    std::string list = "[UserList]\r\nNumber=30\r\n";
    std::string sections;
    for (int user = 0; user < 30; ++user)
    {
        const std::string number = std::to_string(user);
        list += "User" + number + "=U" + number + "\r\n";
        sections += "[U" + number + "]\r\nNumber=1000\r\n";
    }
    ASSERT_TRUE(seeding::WriteBytes(Users(), list + sections));
    Trace::Clear();
    EXPECT_EQ(0, engine.DeletePwrScheme(42, L"alice"));
    EXPECT_GT(11000U, Trace::Count(CallClass::Profile));

    // What isn't reached keeps its owner, for another clearing.
    Trace::Clear();
    EXPECT_EQ(1, engine.ClearPwrSchemes());
    EXPECT_GT(11000U, Trace::Count(CallClass::Profile));
    EXPECT_EQ(kAbsent, seeding::GetKey(Users(), "U8", "Number"));
    EXPECT_EQ("1000", seeding::GetKey(Users(), "U10", "Number"));
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", "10001"));
    for (const char* const entry : {"Scheme0", "Scheme1"})
    {
        ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), entry, "7"));
    }
    EXPECT_EQ(1, engine.ClearCurrentUserSettings());
    EXPECT_EQ(kAbsent, seeding::GetKey(Users(), SidOf("alice"), "Number")) << "only two were there";
}

INSTANTIATE_TEST_SUITE_P(BothGenerations, DamagedFiles, testing::Values(5U, 6U));

} // namespace
