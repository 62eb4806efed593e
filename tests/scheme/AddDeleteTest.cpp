// tests/scheme/AddDeleteTest.cpp
//
// New schemes, names, deletion, and the user scheme file behind them: what requests can't do, and what they
// leave behind. The common cases are in the transcripts.

#include "scheme/SchemeTest.h"

#include "control/RegistryEditor.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;

namespace
{

constexpr const char* kMachineKey =
    "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";

class AddDelete : public SchemeTest
{
protected:
    static int Add(Engine& who, const std::string& name, int from = 3)
    {
        return who.AddPwrScheme(seeding::Wide(name).data(), L"text", from, L"user");
    }

    static std::string EntriesOf(const std::string& user)
    {
        return seeding::GetKey(Users(), SidOf(user), "Number");
    }

    /// Name and description.
    std::string TextsOf(int scheme)
    {
        wchar_t name[64] = {};
        wchar_t description[512] = {};
        ULONG nameCapacity = 64;
        ULONG descriptionCapacity = 512;
        EXPECT_NE(
            0, engine.GetPwrSchemeNameDesc(scheme, name, &nameCapacity, description, &descriptionCapacity));
        return seeding::Utf8(name) + ": " + seeding::Utf8(description);
    }
};

TEST_F(AddDelete, NamesAreTrimmedTestedAndComparedExactly)
{
    Engine bob;
    ActFor(bob, "bob");
    ASSERT_EQ(6, Add(bob, "Mine"));
    const std::string longest(29, 'x');
    int number = 7;
    for (const std::string& name : Lines{"Mine", "mine", longest, "\tMine", "\"Mine\"", "a\x01\x7F"})
    {
        EXPECT_EQ(number++, Add(engine, name)) << name;
        EXPECT_EQ(-2, Add(engine, ' ' + name + "  ")) << name;
    }
    const std::string blanks(258, ' ');
    EXPECT_EQ(number, Add(engine, blanks.substr(1) + "y"));
    for (const std::string& name :
         Lines{"", "   ", longest + "x", "z" + blanks, "a\r\nNumber=9", "\nMine", "Mine\r "})
    {
        EXPECT_EQ(-1, Add(engine, name)) << name;
    }
    EXPECT_EQ(-1, engine.AddPwrScheme(static_cast<const wchar_t*>(nullptr), L"", 3, L"alice"));
    // The tests run in order: a taken name shows before a missing base scheme.
    EXPECT_EQ(-2, Add(engine, "Mine", 99));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, Add(engine, "Other", 99)); }),
                ElementsAre("Find copy from scheme failed: 99"));
    EXPECT_EQ("7", EntriesOf("alice"));
    EXPECT_EQ("1", EntriesOf("bob"));
    EXPECT_EQ(6, engine.FindPwrScheme(L"Mine"));
    // The entry keeps the name as it was given, so the trimmed name is free.
    EXPECT_EQ(14, Add(engine, " Blank"));
    EXPECT_EQ(15, Add(engine, "Blank"));
    EXPECT_EQ(14, engine.FindPwrScheme(L" Blank", L"alice"));
}

// Quotes stand in the file only where the system's functions would otherwise change the name.
TEST_F(AddDelete, AnEntryKeepsItsNameAlsoWhenItMoves)
{
    const std::string longest(254, 'n'); // with one more the longest that is read
    using Row = std::pair<std::string, bool>;
    const auto rows = {Row{"a", false},    Row{" a", true},    Row{"a\t", true},
                       Row{"\"a\"", true}, Row{"'a'", true},   Row{"\"a'", false},
                       Row{"\"", false},   Row{"\"\"", true},  Row{"a\tb\x01", false},
                       Row{"\x0B", true},  Row{"a\x0C", true}, Row{longest + ' ', true},
                       Row{"", false}};
    ASSERT_EQ(6, Add(engine, "first"));
    int number = 100;
    for (const auto& [name, quoted] : rows)
    {
        EXPECT_EQ(1, engine.AddtoUserScheme(seeding::Wide(name).data(), L"alice", number++));
    }
    for (const int index : {1, 0})
    {
        number = 100;
        for (const auto& [name, quoted] : rows)
        {
            const std::string text = quoted ? '"' + name + '"' : name;
            const std::string key = "SchemeName" + std::to_string(number - 100 + index) + '=';
            EXPECT_THAT(seeding::ReadBytes(Users()).value_or(""), testing::HasSubstr(key + text + "\r\n"));
            EXPECT_EQ(number++, engine.FindPwrScheme(seeding::Wide(name).data(), L"alice")) << name;
        }
        EXPECT_EQ(index, engine.DeletePwrScheme(6, L"alice"));
    }
    const auto before = seeding::ReadBytes(Users());
    EXPECT_EQ(-1, engine.AddtoUserScheme(L"a\nNumber=9", L"alice", 200));
    EXPECT_EQ(before, seeding::ReadBytes(Users()));
    EXPECT_EQ(1, engine.AddtoUserScheme(seeding::Wide(' ' + std::string(5000, 'n')).data(), L"alice", 200));
    EXPECT_THAT(seeding::ReadBytes(Users()).value_or(""), testing::HasSubstr("nn\"\r\n"))
        << "cut before its quote";
}

TEST_F(AddDelete, WithoutAnOwnerTheOperatingSystemsNamesCount)
{
    EXPECT_EQ(1, engine.FindPwrScheme(L"Portable/Laptop"));
    EXPECT_EQ(-1, engine.FindPwrScheme(L"portable/laptop"));
    EXPECT_EQ(-1, engine.FindPwrScheme(nullptr));
    EXPECT_EQ(-2, engine.AddPwrScheme(L"Portable/Laptop", L"", 3));
    Run("set 3 dc BacklightLevel = 5 -> 5");
    EXPECT_EQ(6, engine.AddPwrScheme(L"Nobody's", L"", 3));
    Run("get 6 dc BacklightLevel -> 5");
    EXPECT_EQ(std::string("6\0\0\0", 4), RegistryEditor::Read(kMachineKey, "LastID")->bytes) << "terminated";
    EXPECT_EQ(-2, engine.AddPwrScheme(L"Nobody's", L"", 3));
    EXPECT_EQ(-1, engine.AddPwrScheme(L" ", L"", 3));
    EXPECT_TRUE(LinesOf([&] { EXPECT_EQ(-1, engine.AddPwrScheme(L"Other", L"", 99)); }).empty());
    EXPECT_FALSE(seeding::Exists(Users()));
    // A deletion looks for the user's entry, and that opens the user's file.
    Run("delete 6 asUser -> 1");
    EXPECT_EQ("", seeding::ReadBytes(Users()));
}

TEST_F(AddDelete, AWholeSchemeIsAddedWithoutTheHibernateTimesOfItsBase)
{
    PWRSET set{};
    set.schemeID = 3;
    std::fill_n(set.desc, kSchemeTextCapacity, L'd'); // without a terminator
    set.name[0] = L'n';
    Run("set 3 ac StandbyTimeOut = 300 -> 1; set 3 ac HibernateTimeOut = 21600 -> 1; "
        "set 3 dc StandbyTimeOut = 300 -> 1; set 3 dc HibernateTimeOut = 21600 -> 1");
    EXPECT_EQ(6, engine.AddPwrScheme(set, L"alice"));
    EXPECT_EQ(6, set.schemeID);
    EXPECT_EQ("n: " + std::string(kSchemeTextCapacity, 'd'), TextsOf(6));
    Run("get 6 ac HibernateTimeOut -> 0; get 6 dc HibernateTimeOut -> 0");
    set.schemeID = 3;
    EXPECT_EQ(-2, engine.AddPwrScheme(set, L"alice"));
    EXPECT_EQ(3, set.schemeID);
    std::fill_n(set.name, kSchemeTextCapacity, L'n');
    EXPECT_EQ(-1, engine.AddPwrScheme(set, L"alice")) << "too long";
    std::fill_n(set.name, kSchemeTextCapacity, L' ');
    EXPECT_EQ(-1, engine.AddPwrScheme(set, L"alice")) << "nothing but blanks";
}

TEST_F(AddDelete, RenamingLeavesTheUserSchemeFileAlone)
{
    ASSERT_EQ(6, Add(engine, "Old"));
    EXPECT_EQ(6, engine.SetPwrSchemeNameDesc(6, L"  New ", L"more"));
    EXPECT_EQ(-2, Add(engine, "Old"));
    EXPECT_EQ(7, Add(engine, "New"));
    for (const auto& [refused, line] :
         {std::pair{"ReadPwrScheme", "CSchemeEx::SetPwrSchemeNameDesc: Can't read pwr scheme: 6"},
          std::pair{"ReadProcessorPwrScheme", "CSchemeEx::SetPwrSchemeNameDesc: Can't read cpu scheme: 6"},
          std::pair{"WritePwrScheme", "SetPwrSchemeNameDesc: ::WritePwrScheme failed"},
          std::pair{"WriteProcessorPwrScheme", "SetPwrSchemeNameDesc: ::WriteProcessorPwrScheme failed"}})
    {
        EXPECT_EQ("New: more", TextsOf(6));
        Faults::Inject(refused, 1, ERROR_ACCESS_DENIED);
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(6, L"X", L"")); }),
                    ElementsAre(line));
    }
    EXPECT_EQ("X: ", TextsOf(6)) << "the texts go first";
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(77, L"X", L"")); }),
                ElementsAre("CSchemeEx::SetPwrSchemeNameDesc: Can't Find pwr scheme: 77"));
    EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(6, L" ", L""));
    EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(6, seeding::Wide(std::string(30, 'x')).data(), L""));
}

TEST_F(AddDelete, WhatBelongsToNobodyOrToBothIsDeleted)
{
    Engine bob;
    ActFor(bob, "bob");
    ASSERT_EQ(6, Add(bob, "his"));
    ASSERT_EQ(7, engine.AddPwrScheme(L"nobody's", L"", 3));
    ASSERT_EQ(8, Add(engine, "mine"));
    const auto before = seeding::ReadBytes(Users());
    Run("delete 7 asUser -> 1");
    EXPECT_EQ(before, seeding::ReadBytes(Users()));
    ASSERT_EQ(1, bob.AddtoUserScheme(L"shared", L"bob", 8));
    Run("delete 8 asUser -> 1");
    EXPECT_EQ("2", EntriesOf("bob"));
    EXPECT_EQ("0", EntriesOf("alice"));
}

TEST_F(AddDelete, WhatARefusedOrFailedDeletionLeavesBehind)
{
    EXPECT_TRUE(
        CallsOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(5) + engine.DeletePwrScheme(0, L"alice")); })
            .empty());
    Run("delete 6 asUser -> 0; delete -1 asUser -> 0");
    EXPECT_FALSE(seeding::Exists(Users())) << "a look for an owner makes no file";
    Run("set 3 ac Wifi = 0 -> 0; set 3 dc Wifi = 0 -> 0");
    for (const char* const name : {"active", "no values", "no users", "no root"})
    {
        ASSERT_LT(0, Add(engine, name));
    }
    ASSERT_TRUE(SetActivePwrScheme(6, nullptr, nullptr));
    Run("delete 6 asUser -> 0");

    // The scheme is deleted; section and entry stay.
    ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", "PowerScheme", ""));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(7, L"alice")); }),
                ElementsAre("orvlScheme.Initialize(buffer) failed"));
    ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", "PowerScheme", "PowerSchemes.ini"));
    EXPECT_EQ("0", Stored(7, "Wifi"));
    // Scheme and section are deleted, the entry stays, and the call reports success.
    ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", "UserScheme", ""));
    Run("delete 8 asUser -> 1");
    EXPECT_EQ(kAbsent, Stored(8, "Wifi"));
    const std::vector<std::string> lines =
        LinesOf([&] { EXPECT_EQ(-1, engine.AddtoUserScheme(L"unlisted", L"alice", 9)); });
    EXPECT_THAT(lines, Contains("AddtoUserList: initialize the user scheme cfg file failed"));
    EXPECT_EQ("initialize the user scheme cfg file failed", lines.back());
    EXPECT_EQ(-1, engine.AddtoUserList(L"alice"));
    seeding::Remove(kRoot);
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(9)); }),
                ElementsAre("orvlCfg.Initialize finished"));
    EXPECT_EQ("4", EntriesOf("alice"));
    Run("next -> 6");
}

std::vector<std::string> s_noted;

// Records each scheme; the enumeration ends at the one that the argument names.
unsigned char CALLBACK Note(unsigned int number, ULONG nameSize, wchar_t* name, ULONG descriptionSize,
                            wchar_t* description, LONG last)
{
    s_noted.push_back(std::to_string(number) + ' ' + seeding::Utf8(name) + ' ' + std::to_string(nameSize) +
                      ' ' + seeding::Utf8(description) + ' ' + std::to_string(descriptionSize));
    return number == static_cast<unsigned int>(last) ? 0 : 1;
}

TEST_F(AddDelete, EnumeratingAndNaming)
{
    EXPECT_EQ(1000U, engine.GetVersion());
    s_noted.clear();
    ASSERT_EQ(6, engine.AddPwrScheme(L"abcdef", L"described", 3, L"alice"));
    EXPECT_NE(0, engine.EnumPwrSchemes(Note, 2));
    EXPECT_EQ(3U, s_noted.size());
    EXPECT_NE(0, engine.EnumPwrSchemes(Note, 99));
    EXPECT_EQ("6 abcdef 14 described 20", s_noted.back());
    EXPECT_EQ(0, engine.EnumPwrSchemes(nullptr, 0));
    wchar_t name[5] = {};
    wchar_t text[5] = {};
    ULONG none = 0;
    ULONG five = 5;
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, nullptr, &five, text, &none));
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, name, nullptr, nullptr, &five));
    EXPECT_EQ("", seeding::Utf8(name) + seeding::Utf8(text));
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, name, &five, text, &five));
    EXPECT_EQ("abcd desc", seeding::Utf8(name) + ' ' + seeding::Utf8(text));
    EXPECT_EQ(0, engine.GetPwrSchemeNameDesc(7, name, &five, nullptr, nullptr));
}

} // namespace
