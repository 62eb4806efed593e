// tests/scheme/DamagedFilesTest.cpp
//
// Files with arbitrary content: only documented results, no write outside a buffer, no endless loop.

#include "scheme/SchemeTest.h"

#include <algorithm>
#include <random>

using namespace simulated;

namespace
{

constexpr const char* kHuge = "2147483647";

std::string RandomBytes(std::size_t size)
{
    std::mt19937 random(7); // NOLINT(bugprone-random-generator-seed): a failure must be repeatable
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random()); });
    return bytes;
}

using XpDamagedFiles = SchemeTest;
using VistaDamagedFiles = OnVista<SchemeTest>;

// On the generation that also has its schemes in a file.
TEST_F(VistaDamagedFiles, GarbageReadsAsNothing)
{
    const std::string longLines =
        "[Scheme 1]\r\nGUID=" + std::string(5000, '{') + "\r\nWifi=" + std::string(70000, '9') +
        "\r\n[Wifi]\r\nUnit=" + std::string(70000, 'u') + "\r\n[" + std::string(5000, 'x');
    // With what the catalogue gives for it: a count of options, the length of a unit in a buffer of 8.
    for (const auto& [bytes, options, unit] :
         {std::tuple{RandomBytes(4096), -1, -1}, std::tuple{"\xFF\xFE" + RandomBytes(4095), -1, -1},
          std::tuple{longLines, -1, 7},
          std::tuple{std::string("[Wifi]\r\nOptionNumber=-7\r\n[Schemes]\r\nSchemeMaxIndex=-9\r\n"), -7, -1}})
    {
        for (const std::string& file : {Values(), Users(), std::string(kCatalogue), Display("alice")})
        {
            ASSERT_TRUE(seeding::WriteBytes(file, bytes));
        }
        wchar_t text[8];
        GUID guid{};
        PWRSET set{};
        EXPECT_EQ((std::vector<int>{options, unit, -1, -1}),
                  (std::vector<int>{engine.GetPwrVariableOptCount(L"Wifi"),
                                    engine.GetPwrVariableUnit(L"Wifi", text, 8),
                                    engine.GetPwrVariableOptDesc(L"Wifi", 0, text, 8),
                                    engine.GetPwrVariableName(L"Wifi", text, 8)}));
        EXPECT_EQ((std::vector<int>{0, 0, 0, -1, -1, -1, 0, 1}),
                  (std::vector<int>{engine.ValidateData(L"Wifi", 1), engine.GetHiberTimeFromStandbyTime(60),
                                    engine.SchemeIndexToGuid(1, &guid), engine.SchemeGuidToIndex(&kBalanced),
                                    engine.GetActivePwrScheme(0), engine.FindPwrScheme(L"name", L"alice"),
                                    engine.DeletePwrScheme(42, L"alice"), engine.GetPwrVariableAll(set, 1)}));
        EXPECT_EQ(-1, set.ac.wifi);
        EXPECT_EQ(0, set.IfDefault + set.IconNum + set.IfShow);
        EXPECT_EQ(1, engine.AddtoUserScheme(L"name", L"alice", 42));
    }
}

/// How often the profile functions are called while `work` runs.
unsigned ProfileCallsOf(const std::function<void()>& work)
{
    Trace::Clear();
    work();
    return Trace::Count(CallClass::Profile);
}

// The files that it names count as files that can't be opened, and no scheme loses its owner.
TEST_F(XpDamagedFiles, WithoutARootFileNothingChanges)
{
    ASSERT_EQ(6, engine.AddPwrScheme(L"Mine", L"", 3, L"alice"));
    const auto users = seeding::ReadBytes(Users());
    seeding::Remove(kRoot);
    PWRSET set{};
    EXPECT_EQ(1, engine.GetPwrVariableAll(set, 6));
    EXPECT_EQ(-1, engine.GetPwrVariableOptCount(L"Wifi"));
    EXPECT_EQ(-1, engine.FindPwrScheme(L"Mine", L"alice"));
    EXPECT_EQ(-1, engine.AddtoUserList(L"alice"));
    EXPECT_EQ(-1, engine.AddtoUserScheme(L"x", L"alice", 9));
    EXPECT_EQ(-1, engine.ClearCurrentUserSettings());
    EXPECT_EQ(-1, engine.ClearPwrSchemes());
    Run("get 6 ac Wifi -> -1; set 6 ac Wifi = 0 -> -1; find 6 -> 1");
    EXPECT_EQ(users, seeding::ReadBytes(Users()));
}

// A damaged count of two thousand million entries must not keep a request for hours.
TEST_F(VistaDamagedFiles, CountsWithoutEntriesEndSoon)
{
    Trace::Record(false);
    ASSERT_TRUE(seeding::SetKey(kCatalogue, "Wifi", "OptionNumber", kHuge));
    EXPECT_EQ(1002U, ProfileCallsOf([&] { EXPECT_EQ(0, engine.ValidateData(L"Wifi", 77)); }));
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", kHuge));
    EXPECT_EQ(3U, ProfileCallsOf([&] { EXPECT_EQ(-1, engine.FindPwrScheme(L"name", L"alice")); }));
    ASSERT_TRUE(seeding::SetKey(Values(), "Schemes", "SchemeMaxIndex", kHuge));
    const GUID unknown{};
    EXPECT_EQ(5004U, ProfileCallsOf([&] { EXPECT_EQ(-1, engine.SchemeGuidToIndex(&unknown)); }));
}

// A list whose end can't be reached gets no further entry, which would cut off what lies behind.
TEST_F(XpDamagedFiles, AFullListGetsNoFurtherEntry)
{
    Trace::Record(false);
    std::string users;
    std::string schemes;
    for (int entry = 0; entry < 2500; ++entry)
    {
        users += "User" + std::to_string(entry) + "=1\r\n";
        schemes += "Scheme" + std::to_string(entry) + "=7\r\n";
    }
    const std::string list =
        "[UserList]\r\nNumber=2501\r\n" + users + '[' + SidOf("alice") + "]\r\nNumber=2501\r\n" + schemes;
    ASSERT_TRUE(seeding::WriteBytes(Users(), list));
    EXPECT_EQ(-1, engine.AddtoUserList(L"alice"));
    EXPECT_EQ(-1, engine.AddtoUserScheme(L"one more", L"alice", 9));
    EXPECT_EQ(list, seeding::ReadBytes(Users()));
}

// Each count alone would pass. What isn't reached keeps its owner, for another clearing.
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
    EXPECT_EQ(10033U, ProfileCallsOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(42, L"alice")); }));
    Faults::Inject("DeletePwrScheme", 1, ERROR_ACCESS_DENIED, true);
    EXPECT_EQ(10005U, ProfileCallsOf([&] { EXPECT_EQ(1, engine.ClearPwrSchemes()); }));
    EXPECT_EQ(kAbsent, seeding::GetKey(Users(), "U8", "Number"));
    EXPECT_EQ("1000", seeding::GetKey(Users(), "U10", "Number"));
}

TEST_F(XpDamagedFiles, ANegativeCountIsNone)
{
    ASSERT_TRUE(seeding::SetKey(Users(), SidOf("alice"), "Number", "-5"));
    EXPECT_EQ(1, engine.AddtoUserScheme(L"name", L"alice", 42));
    EXPECT_EQ("1", seeding::GetKey(Users(), SidOf("alice"), "Number"));
    EXPECT_EQ(42, engine.FindPwrScheme(L"name", L"alice"));
}

} // namespace
