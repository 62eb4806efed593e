// tests/scheme/AddDeleteTest.cpp
//
// New schemes, names, deletion, and the user scheme file behind them.

#include "scheme/SchemeTest.h"

#include "notebook/IniDocument.h"
#include "notebook/RegistryEditor.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;

namespace
{

constexpr const char* kMachineKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\PowerCfg";

/// A user's entries, as the file has them.
using Entries = std::vector<std::pair<int, std::string>>;

class AddDelete : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    int Add(Engine& who, const std::string& name, int from = 3)
    {
        return who.AddPwrScheme(seeding::Wide(name).data(), L"text", from, L"user");
    }

    static Entries EntriesOf(const std::string& section)
    {
        const IniDocument file(seeding::ReadBytes(Users()).value_or(""), Encoding::Windows1252);
        Entries entries;
        const int count = std::stoi(file.Value(section, "Number").value_or("0"));
        for (int i = 0; i < count; ++i)
        {
            const std::string place = std::to_string(i);
            entries.emplace_back(std::stoi(file.Value(section, "Scheme" + place).value_or("-1")),
                                 file.Value(section, "SchemeName" + place).value_or(kAbsent));
        }
        return entries;
    }

    static std::string NameOf(Engine& who, int scheme)
    {
        wchar_t name[64] = {};
        ULONG capacity = 64;
        return who.GetPwrSchemeNameDesc(scheme, name, &capacity, nullptr, nullptr) != 0 ? seeding::Utf8(name)
                                                                                        : "";
    }

    static std::string DescriptionOf(Engine& who, int scheme)
    {
        wchar_t text[512] = {};
        ULONG capacity = 512;
        who.GetPwrSchemeNameDesc(scheme, nullptr, nullptr, text, &capacity);
        return seeding::Utf8(text);
    }
};

using VistaAddDelete = OnVista<AddDelete>;

TEST_F(AddDelete, NamesAreTrimmedTestedAndComparedExactly)
{
    struct Row
    {
        std::string name;
        int result;
    };
    Engine bob;
    ActFor(bob, "bob");
    ASSERT_EQ(6, Add(bob, "Mine"));
    const std::string longest(29, 'x');
    for (const Row& row : {Row{"", -1}, Row{"   ", -1}, Row{"Mine", 7}, Row{"Mine", -2}, Row{"mine", 8},
                           Row{" Mine ", -2}, Row{longest, 9}, Row{"  " + longest + "  ", -2},
                           Row{longest + "x", -1}, Row{std::string(259, ' '), -1}, Row{"a\r\nNumber=9", -1},
                           Row{"\nMine", -1}, Row{"Mine\r ", -1}, Row{"\tMine", 10}, Row{"\tMine", -2},
                           Row{"\"Mine\"", 11}, Row{"\"Mine\"", -2}, Row{"a\x01\x7F", 12}, Row{" Mine", -2}})
    {
        EXPECT_EQ(row.result, Add(engine, row.name)) << row.name;
    }
    EXPECT_EQ(-1, engine.AddPwrScheme(static_cast<const wchar_t*>(nullptr), L"", 3, L"alice"));
    // The tests run in order: a taken name shows before a missing base scheme.
    EXPECT_EQ(-2, Add(engine, "Mine", 99));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(-1, Add(engine, "Other", 99)); }),
                ElementsAre("Find copy from scheme failed: 99"));
    EXPECT_EQ(6U, EntriesOf(SidOf("alice")).size());
    EXPECT_EQ(1U, EntriesOf(SidOf("bob")).size());
    EXPECT_EQ(6, engine.FindPwrScheme(L"Mine"));
    // The entry keeps the name as it was given, so the trimmed name is free.
    EXPECT_EQ(13, Add(engine, " Blank"));
    EXPECT_EQ(14, Add(engine, "Blank"));
    EXPECT_EQ(13, engine.FindPwrScheme(L" Blank", L"alice"));
}

// Quotes stand in the file only where the system's functions would otherwise change the name.
TEST_F(AddDelete, AnEntryKeepsItsNameAlsoWhenItMoves)
{
    struct Row
    {
        std::string name;
        bool quoted;
    };
    const std::string longest(254, 'n'); // with one more the longest that is read
    const Row rows[] = {{"a", false},        {" a", true},    {"a\t", true},        {"\"a\"", true},
                        {"'a'", true},       {"\"a'", false}, {"\"", false},        {"\"\"", true},
                        {"a\tb\x01", false}, {"\x0B", true},  {longest + ' ', true}};
    ASSERT_EQ(6, Add(engine, "first"));
    int number = 100;
    for (const Row& row : rows)
    {
        EXPECT_EQ(1, engine.AddtoUserScheme(seeding::Wide(row.name).data(), L"alice", number++));
    }
    for (const int place : {1, 0})
    {
        number = 100;
        for (const Row& row : rows)
        {
            const std::string text = row.quoted ? '"' + row.name + '"' : row.name;
            const std::string key = "SchemeName" + std::to_string(number - 100 + place) + '=';
            EXPECT_THAT(seeding::ReadBytes(Users()).value_or(""), testing::HasSubstr(key + text + "\r\n"));
            EXPECT_EQ(number++, engine.FindPwrScheme(seeding::Wide(row.name).data(), L"alice")) << row.name;
        }
        EXPECT_EQ(place, engine.DeletePwrScheme(6, L"alice"));
    }
    const auto before = seeding::ReadBytes(Users());
    EXPECT_EQ(-1, engine.AddtoUserScheme(L"a\nNumber=9", L"alice", 200));
    EXPECT_EQ(before, seeding::ReadBytes(Users()));
    EXPECT_EQ(1, engine.AddtoUserScheme(seeding::Wide(' ' + std::string(5000, 'n')).data(), L"alice", 200));
}

TEST_F(AddDelete, WithoutAnOwnerTheOperatingSystemsNamesCount)
{
    const std::string taken = NameOf(engine, 2);
    EXPECT_EQ(2, engine.FindPwrScheme(seeding::Wide(taken).data()));
    EXPECT_EQ(-1, engine.FindPwrScheme(seeding::Wide('p' + taken.substr(1)).data())) << "another case";
    EXPECT_EQ(-2, engine.AddPwrScheme(seeding::Wide(taken).data(), L"", 3));
    ASSERT_EQ(5, engine.SetPwrVariable(3, 0, L"BacklightLevel", 5));
    EXPECT_EQ(6, engine.AddPwrScheme(L"Nobody's", L"", 3));
    EXPECT_EQ(5, engine.GetPwrVariable(6, 0, L"BacklightLevel"));
    const auto lastId = RegistryEditor::Read(std::string("HKEY_LOCAL_MACHINE\\") + kMachineKey, "LastID");
    EXPECT_EQ(std::string("6\0\0\0", 4), lastId->bytes) << "with its terminator";
    EXPECT_EQ(-2, engine.AddPwrScheme(L"Nobody's", L"", 3));
    EXPECT_EQ(-1, engine.AddPwrScheme(L" ", L"", 3));
    EXPECT_TRUE(LinesOf([&] { EXPECT_EQ(-1, engine.AddPwrScheme(L"Other", L"", 99)); }).empty());
    EXPECT_FALSE(seeding::Exists(Users()));
    // A deletion looks for the user's entry, and that opens the user's file.
    EXPECT_EQ(1, engine.DeletePwrScheme(6, L"alice"));
    EXPECT_EQ("", seeding::ReadBytes(Users()));
}

// The values themselves are in the transcripts.
TEST_F(AddDelete, AWholeSchemeIsAddedWithoutTheHibernateTimesOfItsBase)
{
    PWRSET set{};
    set.schemeID = 3;
    std::fill_n(set.desc, kSchemeTextCapacity, L'd'); // fills its field whole, without a terminator
    set.name[0] = L'n';
    for (const int ifAC : {1, 0})
    {
        ASSERT_EQ(1, engine.SetPwrVariable(3, ifAC, L"StandbyTimeOut", 300));
        ASSERT_EQ(1, engine.SetPwrVariable(3, ifAC, L"HibernateTimeOut", 21600));
    }
    EXPECT_EQ(6, engine.AddPwrScheme(set, L"alice"));
    EXPECT_EQ(6, set.schemeID);
    EXPECT_EQ(std::string(kSchemeTextCapacity, 'd'), DescriptionOf(engine, 6));
    EXPECT_EQ(0, engine.GetPwrVariable(6, 1, L"HibernateTimeOut"));
    EXPECT_EQ(0, engine.GetPwrVariable(6, 0, L"HibernateTimeOut"));
    set.schemeID = 3;
    EXPECT_EQ(-2, engine.AddPwrScheme(set, L"alice"));
    EXPECT_EQ(3, set.schemeID);
    std::fill_n(set.name, kSchemeTextCapacity, L'n');
    EXPECT_EQ(-1, engine.AddPwrScheme(set, L"alice")) << "too long";
}

TEST_F(AddDelete, WhatAFailedAdditionLeavesBehind)
{
    int next = 6;
    for (const auto& [function, inStore, owned] : {std::tuple{"ReadPwrScheme", false, false},
                                                   {"ReadProcessorPwrScheme", false, false},
                                                   {"WritePwrScheme", false, false},
                                                   {"WriteProcessorPwrScheme", true, false},
                                                   {"RegSetValueExW", true, true}})
    {
        SCOPED_TRACE(function);
        const std::size_t before = EntriesOf(SidOf("alice")).size();
        Faults::Inject(function, 1, ERROR_ACCESS_DENIED);
        EXPECT_EQ(owned ? next : -1, Add(engine, function));
        EXPECT_TRUE(Faults::AllHit());
        EXPECT_EQ(inStore ? 1 : 0, engine.FindPwrScheme(next));
        EXPECT_EQ(before + (owned ? 1 : 0), EntriesOf(SidOf("alice")).size());
        next += inStore ? 1 : 0;
    }
    // Without the user scheme file the scheme has no owner.
    ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "UserScheme", ""));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(next, Add(engine, "Nobody's")); }),
                Contains("initialize the user scheme cfg file failed"));
    EXPECT_EQ(1, engine.FindPwrScheme(next));
}

TEST_F(AddDelete, RenamingLeavesTheUserSchemeFileAlone)
{
    ASSERT_EQ(6, Add(engine, "Old"));
    EXPECT_EQ(6, engine.SetPwrSchemeNameDesc(6, L"  New ", L"more"));
    EXPECT_EQ("New", NameOf(engine, 6));
    EXPECT_EQ("more", DescriptionOf(engine, 6));
    EXPECT_EQ((Entries{{6, "Old"}}), EntriesOf(SidOf("alice")));
    EXPECT_EQ(-2, Add(engine, "Old"));
    EXPECT_EQ(7, Add(engine, "New"));
    struct Row
    {
        int scheme;
        const char* refused; ///< the call that fails; null for none
        std::string name;
        Lines lines;
    };
    for (const Row& row :
         {Row{6, nullptr, " ", {}}, Row{6, nullptr, std::string(30, 'x'), {}},
          Row{77, nullptr, "X", {"CSchemeEx::SetPwrSchemeNameDesc: Can't Find pwr scheme: 77"}},
          Row{6, "ReadPwrScheme", "X", {"CSchemeEx::SetPwrSchemeNameDesc: Can't read pwr scheme: 6"}},
          Row{6,
              "ReadProcessorPwrScheme",
              "X",
              {"CSchemeEx::SetPwrSchemeNameDesc: Can't read cpu scheme: 6"}},
          Row{6, "WritePwrScheme", "X", {"SetPwrSchemeNameDesc: ::WritePwrScheme failed"}},
          Row{6, "WriteProcessorPwrScheme", "Y", {"SetPwrSchemeNameDesc: ::WriteProcessorPwrScheme failed"}}})
    {
        if (row.refused != nullptr)
        {
            Faults::Inject(row.refused, 1, ERROR_ACCESS_DENIED);
        }
        auto name = seeding::Wide(row.name);
        const auto rename = [&] { EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(row.scheme, name.data(), L"")); };
        EXPECT_EQ(row.lines, LinesOf(rename)) << row.name;
        EXPECT_EQ(row.name == "Y" ? "Y" : "New", NameOf(engine, 6)) << "written before the failure";
    }
}

TEST_F(AddDelete, StandardSchemesReachNoPlatformFunction)
{
    EXPECT_TRUE(CallsOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(5)); }).empty());
    EXPECT_TRUE(CallsOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(0, L"alice")); }).empty());
    for (const int scheme : {6, -1})
    {
        EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(scheme, L"alice")); }),
                    ElementsAre(testing::StartsWith("delete windows power scheme failed ")));
    }
    // A look for an owner makes no file.
    EXPECT_FALSE(seeding::Exists(Users()));
}

TEST_F(AddDelete, WhatBelongsToNobodyOrToBothIsDeleted)
{
    Engine bob;
    ActFor(bob, "bob");
    ASSERT_EQ(6, Add(bob, "his"));
    ASSERT_EQ(7, engine.AddPwrScheme(L"nobody's", L"", 3));
    ASSERT_EQ(8, Add(engine, "mine"));
    const auto before = seeding::ReadBytes(Users());
    EXPECT_EQ(1, engine.DeletePwrScheme(7, L"alice"));
    EXPECT_EQ(before, seeding::ReadBytes(Users()));
    ASSERT_EQ(1, bob.AddtoUserScheme(L"shared", L"bob", 8));
    EXPECT_EQ(1, engine.DeletePwrScheme(8, L"alice"));
    EXPECT_EQ(2U, EntriesOf(SidOf("bob")).size());
    EXPECT_TRUE(EntriesOf(SidOf("alice")).empty());
}

TEST_F(AddDelete, WhatAFailedDeletionLeavesBehind)
{
    ASSERT_EQ(6, Add(engine, "active"));
    ASSERT_TRUE(SetActivePwrScheme(6, nullptr, nullptr));
    EXPECT_EQ(0, engine.DeletePwrScheme(6, L"alice"));
    EXPECT_EQ(1U, EntriesOf(SidOf("alice")).size());
    ASSERT_TRUE(SetActivePwrScheme(3, nullptr, nullptr));

    // The scheme goes, section and entry stay.
    ASSERT_EQ(1, engine.SetPwrVariable(6, 1, L"Wifi", 1));
    ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "PowerScheme", ""));
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(6, L"alice")); }),
                ElementsAre("orvlScheme.Initialize(buffer) failed"));
    ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "PowerScheme", "PowerSchemes.ini"));
    EXPECT_EQ(0, engine.FindPwrScheme(6));
    EXPECT_EQ("1", Stored(6, "Wifi"));
    EXPECT_EQ(1U, EntriesOf(SidOf("alice")).size());

    // Scheme and section go, the entry stays, and the call reports success.
    ASSERT_EQ(6, Add(engine, "again"));
    ASSERT_EQ(7, Add(engine, "last"));
    ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "UserScheme", ""));
    EXPECT_EQ(1, engine.DeletePwrScheme(6, L"alice"));
    EXPECT_EQ(kAbsent, Stored(6, "Wifi"));
    EXPECT_EQ(3U, EntriesOf(SidOf("alice")).size());
    seeding::Remove(Root());
    EXPECT_THAT(LinesOf([&] { EXPECT_EQ(0, engine.DeletePwrScheme(7)); }),
                ElementsAre("orvlCfg.Initialize finished"));
}

std::vector<std::string> s_noted;

// Notes each scheme; the walk ends at the one that the argument names.
unsigned char CALLBACK Note(unsigned int number, ULONG nameSize, wchar_t* name, ULONG descriptionSize,
                            wchar_t* description, LONG last)
{
    s_noted.push_back(std::to_string(number) + ' ' + seeding::Utf8(name) + ' ' + std::to_string(nameSize) +
                      ' ' + seeding::Utf8(description) + ' ' + std::to_string(descriptionSize));
    return number == static_cast<unsigned int>(last) ? 0 : 1;
}

TEST_F(AddDelete, EnumeratingAndNaming)
{
    s_noted.clear();
    ASSERT_EQ(6, engine.AddPwrScheme(L"abcdef", L"described", 3, L"alice"));
    EXPECT_NE(0, engine.EnumPwrSchemes(Note, 2));
    EXPECT_THAT(s_noted, ElementsAre(testing::StartsWith("0 "), testing::StartsWith("1 "),
                                     testing::StartsWith("2 " + NameOf(engine, 2))));
    EXPECT_NE(0, engine.EnumPwrSchemes(Note, 99));
    EXPECT_EQ("6 abcdef 14 described 20", s_noted.back());
    EXPECT_EQ(0, engine.EnumPwrSchemes(nullptr, 0));

    wchar_t name[5] = {};
    wchar_t description[512] = L"untouched";
    ULONG none = 0;
    ULONG nameLength = 5;
    ULONG descriptionLength = 512;
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, nullptr, &nameLength, description, &none));
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, name, nullptr, nullptr, &descriptionLength));
    EXPECT_EQ("untouched", seeding::Utf8(description));
    EXPECT_EQ("", seeding::Utf8(name));
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, nullptr, &nameLength, description, &descriptionLength));
    EXPECT_EQ("described", seeding::Utf8(description));
    EXPECT_NE(0, engine.GetPwrSchemeNameDesc(6, name, &nameLength, nullptr, nullptr));
    EXPECT_EQ("abcd", seeding::Utf8(name));
    EXPECT_EQ(0, engine.GetPwrSchemeNameDesc(7, name, &nameLength, nullptr, nullptr));
}

TEST_F(VistaAddDelete, OnlyDeletingWorks)
{
    EXPECT_EQ(-1, Add(engine, "Mine", 1));
    EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(1, L"Mine", L""));
    EXPECT_EQ(-1, engine.FindPwrScheme(L"Home/Office Desk"));
    EXPECT_EQ(0, engine.EnumPwrSchemes(Note, 2));
    wchar_t name[5];
    ULONG length = 5;
    EXPECT_EQ(0, engine.GetPwrSchemeNameDesc(1, name, &length, nullptr, nullptr));
    for (int row = 0; row < 3; ++row)
    {
        EXPECT_EQ(0, engine.DeletePwrScheme(row));
        EXPECT_EQ(1, engine.FindPwrScheme(row));
    }
}

/// One of the users of the long run, and what his section should say.
struct Player
{
    Engine engine;
    std::string section;
    Entries own;
};

// What an addition does to the file, without the copy of the scheme: an entry unless the name is taken.
void AddAtRandom(Player& player, const std::string& name, int number)
{
    auto wide = seeding::Wide(name);
    const bool isTaken = std::any_of(player.own.begin(), player.own.end(),
                                     [&](const auto& entry) { return entry.second == name; });
    ASSERT_EQ(isTaken, player.engine.FindPwrScheme(wide.data(), L"") != -1);
    if (!isTaken)
    {
        auto scheme = static_cast<UINT>(number);
        POWER_POLICY policy{};
        ASSERT_TRUE(WritePwrScheme(&scheme, wide.data(), wide.data(), &policy));
        ASSERT_EQ(1, player.engine.AddtoUserScheme(wide.data(), L"", number));
        player.own.emplace_back(number, name);
    }
}

// Three users add and delete at random; the file says what a simple model says.
TEST_F(AddDelete, TheUserSchemeFileFollowsAModelThroughManySteps)
{
    constexpr int kSteps = 200;
    constexpr std::size_t kMostEntries = 5;
    Trace::Record(false);
    std::mt19937 random(20240229); // NOLINT(bugprone-random-generator-seed): a failure must be repeatable
    Player players[3];
    for (std::size_t place = 0; const char* name : {"alice", "bob", "carol"})
    {
        ActFor(players[place].engine, name);
        players[place++].section = SidOf(name);
    }
    for (int step = 0; step < kSteps && !HasFatalFailure(); ++step)
    {
        Player& player = players[random() % 3];
        Player& owner = players[random() % 3];
        if (player.own.size() < kMostEntries && random() % 2 == 0)
        {
            AddAtRandom(player, "n" + std::to_string(random() % 10), 6 + step);
        }
        else if (!owner.own.empty())
        {
            // Works for the owner alone.
            const auto victim = owner.own.begin() + static_cast<std::ptrdiff_t>(random() % owner.own.size());
            const int deleted = player.engine.DeletePwrScheme(victim->first, L"");
            ASSERT_EQ(&player == &owner ? 1 : 0, deleted);
            owner.own.erase(victim, victim + deleted);
        }
        const Player& checked = players[step % 3];
        ASSERT_TRUE(step % 5 != 0 || checked.own == EntriesOf(checked.section)) << step;
    }
    for (const Player& each : players)
    {
        EXPECT_EQ(each.own, EntriesOf(each.section));
    }
    EXPECT_EQ("3", seeding::GetKey(Users(), "UserList", "Number"));
}

} // namespace
