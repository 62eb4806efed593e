// tests/acceptance/SchemeCommandsTest.cpp
//
// The commands on schemes through the built library, on both generations of Windows. How the engine handles
// each value is covered by the engine's own tests.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstring>
#include <tuple>

namespace
{

struct Case
{
    const char* command;
    std::string fields;
    const char* outcome;
    const char* onVista = nullptr; ///< where it is another one
};

class SchemeCommands : public GenerationTest
{
protected:
    void Check(std::span<const Case> rows)
    {
        for (const Case& row : rows)
        {
            const char* const wanted = row.onVista == nullptr || IsXp() ? row.outcome : row.onVista;
            EXPECT_EQ(wanted, Ask(*host, row.command, row.fields)) << row.command << ' ' << row.fields;
        }
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, SchemeCommands, testing::ValuesIn(environment::Generations()));

TEST_P(SchemeCommands, VariablesAndSchemesAreReadAndWritten)
{
    const std::string whole =
        "scheme=1 ac.cpuSpeed=100 ac.backlightLevel=7 ac.lanSpeed=1 ac.lums=0 ac.monitorOffTimeOut=900 "
        "ac.standbyTimeOut=1800 ac.wifi=1 ac.lanStatus=0 ac.threeG=1 dc.cpuSpeed=50 dc.backlightLevel=3 "
        "dc.lanSpeed=2 dc.lums=0 dc.monitorOffTimeOut=300 dc.standbyTimeOut=600 dc.wifi=0 dc.lanStatus=1 "
        "dc.threeG=0 IfDefault=1 IconNum=5 IfShow=1";
    const std::string wholeReply = "0 name=\"\" desc=\"\" " + whole;
    const Case rows[] = {
        {"EDIT_SCHEME", "scheme=1 ac=1 name=MonitorOffTimeOut value=900", "0 answer=1"},
        {"EDIT_SCHEME", "scheme=1 ac=0 name=MonitorOffTimeOut value=300", "0 answer=1"},
        {"EDIT_SCHEME", "scheme=1 ac=1 name=3G value=0", "0 answer=0"},
        {"EDIT_SCHEME", "scheme=1 ac=0 name=3G value=1", "0 answer=1"},
        {"EDIT_SCHEME", "scheme=1 ac=1 name=NoSuch value=1", "6"},
        {"QUERY_SCHEME", "scheme=1 ac=1 name=MonitorOffTimeOut", "0 answer=900"},
        {"QUERY_SCHEME", "scheme=1 ac=0 name=MonitorOffTimeOut", "0 answer=300"},
        {"QUERY_SCHEME", "scheme=1 ac=1 name=3G", "0 answer=0"},
        {"QUERY_SCHEME", "scheme=1 ac=0 name=3G", "0 answer=1"},
        {"QUERY_SCHEME", "scheme=1 ac=1 name=NoSuch", "6 answer=-1"},
        {"QUERY_SCHEME", "scheme=99 ac=1 name=MonitorOffTimeOut", "6 answer=-1"},
        {"GET_SCHEME_VAR_COUNT", "name=Wifi", "0 count=2"},
        {"GET_SCHEME_VAR_COUNT", "name=NoSuch", "6 count=-1"},
        {"GET_SCHEME_VAR_OPT_VALUE", "name=LanSpeed value=1", "0 answer=1"},
        {"GET_SCHEME_VAR_OPT_VALUE", "name=Wifi value=2", "6 answer=-1"},
        {"EDIT_SCHEME_ALL", whole, "0 answer=1"},
        {"QUERY_SCHEME_ALL", "scheme=1", wholeReply.c_str()},
        // Nobody serves the boards here, so the reply reports a failure although the scheme is active.
        {"GET_ACTIVE_SCHEME", "", "0 scheme=1"},
        {"APPLY_SCHEME", "scheme=2", "0 answer=-1"},
        {"GET_ACTIVE_SCHEME", "", "0 scheme=2"},
        {"APPLY_SCHEME", "scheme=99", "0 answer=-1"},
        {"GET_ACTIVE_SCHEME", "", "0 scheme=2"},
        {"SET_CPU_SPEED", "speed=3", "0, CPU_SPEED_CHANGED 0", "0, CPU_SPEED_CHANGED 100"},
        {"SET_CPU_SPEED", "speed=0", "0, CPU_SPEED_CHANGED 100"},
        {"GET_CPU_SPEED", "", "0 speed=0"},
        {"SET_CPU_SPEED", "speed=1", "0, CPU_SPEED_CHANGED 50"},
        {"GET_CPU_SPEED", "", "0 speed=1"},
        {"SET_CPU_SPEED", "speed=2", "0, CPU_SPEED_CHANGED 75"},
        {"GET_CPU_SPEED", "", "0 speed=2"},
        {"SET_CPU_SPEED", "speed=3", "0, CPU_SPEED_CHANGED 0"},
        {"GET_CPU_SPEED", "", "0 speed=3"},
        {"SET_CPU_SPEED", "speed=4", "6"},
        {"SET_CPU_SPEED", "speed=-1", "6"},
    };
    Check(rows);
    if (!IsXp())
    {
        // 60 % on either source, for which the wire has no number.
        EXPECT_TRUE(seeding::SetKey(ProfileFile("PowerSchemes.ini"), "Scheme 2", "CpuSpeed", "3932220"));
        EXPECT_EQ("6", Ask(*host, "GET_CPU_SPEED"));
    }
}

TEST_P(SchemeCommands, SchemesAreAddedNamedAndDeleted)
{
    const std::string all = " ac.monitorOffTimeOut=900 dc.monitorOffTimeOut=300 IconNum=5";
    const Case rows[] = {
        {"ADD_SCHEME", "name=Mine desc=\"about it\" scheme=1", "0 scheme=6", "6"},
        {"ADD_SCHEME_ALL", "name=Other desc=whole scheme=2" + all, "0 scheme=7", "6"},
        {"ADD_SCHEME", "name=Mine desc=again scheme=1", "6"},
        {"ADD_SCHEME_ALL", "name=Mine desc=again scheme=1" + all, "6"},
        {"GET_SCHEME_NAME", "scheme=6", "0 name=\"Mine\" desc=\"about it\" scheme=0",
         "6 name=\"\" desc=\"\" scheme=0"},
        {"GET_SCHEME_NAME", "scheme=7", "0 name=\"Other\" desc=\"whole\" scheme=0",
         "6 name=\"\" desc=\"\" scheme=0"},
        {"QUERY_SCHEME", "scheme=7 ac=0 name=MonitorOffTimeOut", "0 answer=300", "6 answer=-1"},
        {"DELETE_SCHEME", "scheme=1", "6"},
        {"DELETE_SCHEME", "scheme=6", "0 answer=1", "6"},
        {"DELETE_SCHEME", "scheme=6", "6"},
    };
    Check(rows);
    if (IsXp())
    {
        for (const char* const name : {"name=\"\"\"Mine\"\"\"", "name=\"\tMine\""})
        {
            EXPECT_THAT(Ask(*host, "ADD_SCHEME", name), testing::StartsWith("0 ")) << name;
            EXPECT_EQ("6", Ask(*host, "ADD_SCHEME", name)) << name;
        }
        host->user = environment::OtherUserName(); // may have a scheme of the same name
        EXPECT_THAT(Ask(*host, "ADD_SCHEME", "name=Other"), testing::StartsWith("0 "));
        EXPECT_EQ("6", Ask(*host, "DELETE_SCHEME", "scheme=7")) << "another user's";
    }
}

// Name and description of a scheme that something else has made: what is too long for the name's field runs
// into the description, which comes last and stands whole.
TEST_P(SchemeCommands, NamesFromOutsideAreCutByTheDescription)
{
    const char* const key = "Control Panel\\PowerCfg\\PowerPolicies\\2";
    const std::tuple<std::string, const char*, const char*, const char*> rows[] = {
        {"J\u00F6rg", "\u20AC", "J\xF6rg", "\x80"},
        {"A name of thirty-two characters, and more", "", "A name of thirty-two characters,", ""},
        {"A name of thirty-two characters, and more", "d", "A name of thirty-two characters,", "d"},
    };
    for (const auto& [name, description, shownName, shownDescription] : rows)
    {
        EXPECT_TRUE(seeding::SetText(HKEY_CURRENT_USER, key, "Name", name));
        EXPECT_TRUE(seeding::SetText(HKEY_CURRENT_USER, key, "Description", description));
        const std::string reply =
            std::string("0 name=\"") + shownName + "\" desc=\"" + shownDescription + "\" scheme=0";
        EXPECT_EQ(IsXp() ? reply : "6 name=\"\" desc=\"\" scheme=0",
                  Ask(*host, "GET_SCHEME_NAME", "scheme=2"));
    }
}

TEST_P(SchemeCommands, AVariablesNameEndsWithItsField)
{
    std::vector<std::byte> variable = PayloadOf("QUERY_SCHEME", "scheme=1 ac=1 value=-1");
    std::fill_n(variable.begin() + 8, 32, std::byte{'x'});
    host->Uninitialize(); // its thread writes to the log too
    seeding::SwitchLogsOn();
    EXPECT_EQ(6, host->Send("QUERY_SCHEME", variable).code);
    const std::vector<std::string> lines = seeding::LogLines("trxpm.log");
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(), "PM_QUERY_SCHEME schemeID=1, ifAC=1, namemLen=32"));
    EXPECT_EQ(1, std::count(lines.begin(), lines.end(),
                            "PM_QUERY_SCHEME schemeID=1, ifAC=1, valName=" + std::string(32, 'x')));
}

// For two commands the length isn't checked either.
TEST_P(SchemeCommands, RepliesThatNobodyWantsAreLeftOut)
{
    Ask(*host, "ADD_SCHEME", "name=Mine scheme=1");
    const Case rows[] = {
        {"EDIT_SCHEME", "scheme=1 name=Wifi value=1", "0"},
        {"EDIT_SCHEME_ALL", "scheme=1", "0"},
        {"APPLY_SCHEME", "scheme=1", "0"},
        {"DELETE_SCHEME", "scheme=6", "0", "6"},
        {"CLEAR_SCHEMES", "selector=0", "0"},
        {"AUTORUN_ORVA", "flag=1 path=C:\\a.exe", "0"},
        {"PUT_INT_INTO_CONFIG", "type=1 file=p.ini section=S item=K", "0"},
    };
    for (const Case& row : rows)
    {
        const std::vector<std::byte> payload = PayloadOf(row.command, row.fields);
        DWORD size = 4711;
        char reply[4] = {'k', 'e', 'p', 't'};
        PM_Request request{};
        std::memcpy(request.command, row.command, std::strlen(row.command));
        request.userId = host->user.c_str();
        request.params = payload.data();
        const bool clears = row.command == std::string("CLEAR_SCHEMES");
        const bool ofAnyLength = clears || row.command == std::string("AUTORUN_ORVA");
        request.paramsLen = ofAnyLength ? 1 : static_cast<DWORD>(payload.size());
        const std::string wanted = row.onVista == nullptr || IsXp() ? row.outcome : row.onVista;
        request.resultLen = &size;
        EXPECT_EQ(wanted, std::to_string(host->Send(&request))) << row.command;
        EXPECT_EQ(clears ? 0U : 4711U, size) << row.command;
        request.resultLen = nullptr;
        request.result = reply;
        host->Send(&request);
        EXPECT_EQ("kept", std::string(reply, 4)) << row.command;
    }
}

TEST_P(SchemeCommands, ClearingReturnsZeroAndRepliesWithNothing)
{
    Ask(*host, "ADD_SCHEME", "name=Mine scheme=1");
    const auto before = seeding::ReadBytes(ProfileFile("PowerSchemes.ini"));
    for (const char* const selector : {"selector=2", "selector=-1"})
    {
        EXPECT_EQ("0 (empty)", Ask(*host, "CLEAR_SCHEMES", selector));
        EXPECT_EQ(before, seeding::ReadBytes(ProfileFile("PowerSchemes.ini")));
    }
    EXPECT_EQ("0 (empty)", Ask(*host, "CLEAR_SCHEMES", "selector=1"));
    EXPECT_FALSE(seeding::Exists(ProfileFile("UserSchemes.ini")));
}

TEST_P(SchemeCommands, AutoRunNeedsNoUser)
{
    constexpr const char* kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    host->user = "nobody";
    std::vector<std::byte> whole = PayloadOf("AUTORUN_ORVA", "flag=1 path=x");
    std::fill(whole.begin() + 4, whole.end(), std::byte{'p'});
    EXPECT_EQ(0, host->Send("AUTORUN_ORVA", whole).code);
    EXPECT_EQ(std::string(259, 'p'), seeding::GetText(HKEY_LOCAL_MACHINE, kRun, "ORVA"));
    EXPECT_EQ("0", Ask(*host, "AUTORUN_ORVA", "flag=0"));
    EXPECT_FALSE(seeding::GetText(HKEY_LOCAL_MACHINE, kRun, "ORVA").has_value());
    EXPECT_EQ("6", Ask(*host, "AUTORUN_ORVA", "flag=0")) << "there is nothing to take out";
}

} // namespace
