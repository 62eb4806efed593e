// tests/acceptance/SchemeCommandsTest.cpp
//
// The commands on schemes through the built library, on both generations of Windows. What the engine makes of
// each value is told in the engine's own tests.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/Schemes.h"

using namespace schemes;

namespace
{

class SchemeCommands : public GenerationTest
{
};

INSTANTIATE_TEST_SUITE_P(Windows, SchemeCommands, testing::ValuesIn(environment::Generations()));

TEST_P(SchemeCommands, AVariableIsEditedAndRead)
{
    struct Case
    {
        const char* name;
        LONG ac;
        LONG dc;
    };
    constexpr Case kCases[] = {
        {"MonitorOffTimeOut", 900, 300}, {"Wifi", 1, 0}, {"3G", 0, 1}, {"LANStatus", 1, 0}};
    for (const Case& row : kCases)
    {
        EXPECT_EQ(0, host->Send("EDIT_SCHEME", Variable(1, 1, row.name, row.ac)).code) << row.name;
        EXPECT_EQ(0, host->Send("EDIT_SCHEME", Variable(1, 0, row.name, row.dc)).code) << row.name;
        EXPECT_EQ(row.ac, host->Send("QUERY_SCHEME", Variable(1, 1, row.name)).Number()) << row.name;
        EXPECT_EQ(row.dc, host->Send("QUERY_SCHEME", Variable(1, 0, row.name)).Number()) << row.name;
    }
}

TEST_P(SchemeCommands, FailedReadsReplyAndFail)
{
    for (const auto& [command, record] : {std::pair("QUERY_SCHEME", Variable(1, 1, "NoSuch")),
                                          {"QUERY_SCHEME", Variable(99, 1, "MonitorOffTimeOut")},
                                          {"GET_SCHEME_VAR_COUNT", Variable(0, 0, "NoSuch")},
                                          {"GET_SCHEME_VAR_OPT_VALUE", Variable(0, 0, "Wifi", 99)}})
    {
        const Answer answer = host->Send(command, record);
        EXPECT_EQ(6, answer.code) << command;
        EXPECT_EQ(-1, answer.Number()) << command;
    }
    const Answer refused = host->Send("EDIT_SCHEME", Variable(1, 1, "NoSuch", 1));
    EXPECT_EQ(6, refused.code);
    EXPECT_FALSE(refused.reply.has_value());
}

TEST_P(SchemeCommands, TheCatalogueIsRead)
{
    const LONG count = host->Send("GET_SCHEME_VAR_COUNT", Variable(0, 0, "Wifi")).Number();
    ASSERT_GT(count, 0);
    EXPECT_EQ(0, host->Send("GET_SCHEME_VAR_OPT_VALUE", Variable(0, 0, "Wifi", 0)).code);
    EXPECT_EQ(6, host->Send("GET_SCHEME_VAR_OPT_VALUE", Variable(0, 0, "Wifi", count)).code);
}

TEST_P(SchemeCommands, AVariablesNameEndsWithItsField)
{
    PM_Variable_Data record = Variable(1, 1, std::string(32, 'x'), 0);
    record.val = -1; // bytes behind the field that would lengthen the name
    seeding::SwitchLogsOn();
    EXPECT_EQ(6, host->Send("QUERY_SCHEME", record).code);
    const std::vector<std::string> lines = seeding::LogLines("trxpm.log");
    EXPECT_NE(lines.end(),
              std::find(lines.begin(), lines.end(), "PM_QUERY_SCHEME schemeID=1, ifAC=1, namemLen=32"));
}

// Mains and battery, 3G and LAN status: each number comes back in its own place.
TEST_P(SchemeCommands, AWholeSchemeMakesTheRoundTrip)
{
    PM_Power_Scheme_Data_ALL sent = Whole("ignored", 1);
    sent.dc.lums = 77;
    const Answer edited = host->Send("EDIT_SCHEME_ALL", sent);
    EXPECT_EQ(0, edited.code);
    EXPECT_EQ(1, edited.Number());
    const Answer read = host->Send("QUERY_SCHEME_ALL", LONG{1});
    EXPECT_EQ(0, read.code);
    const auto reply = read.As<PM_Power_Scheme_Data_ALL>();

    std::memset(sent.name, 0, sizeof sent.name);
    std::memset(sent.desc, 0, sizeof sent.desc);
    sent.dc.lums = sent.ac.lums;
    const auto* const sentBytes = reinterpret_cast<const BYTE*>(&sent);
    const auto* const readBytes = reinterpret_cast<const BYTE*>(&reply);
    for (std::size_t offset = 0; offset < sizeof sent; ++offset)
    {
        EXPECT_EQ(sentBytes[offset], readBytes[offset]) << "offset " << offset;
    }
}

TEST_P(SchemeCommands, ApplyingAnswersInTheReplyAlone)
{
    const LONG before = host->Send("GET_ACTIVE_SCHEME").Number();
    EXPECT_GE(before, 0);
    // Nobody serves the boards here, so the reply tells of a failure although the scheme is active.
    const Answer applied = host->Send("APPLY_SCHEME", LONG{2});
    EXPECT_EQ(0, applied.code);
    EXPECT_EQ(-1, applied.Number());
    EXPECT_EQ(2, host->Send("GET_ACTIVE_SCHEME").Number());
    const Answer unknown = host->Send("APPLY_SCHEME", LONG{99});
    EXPECT_EQ(0, unknown.code);
    EXPECT_EQ(-1, unknown.Number());
    EXPECT_EQ(2, host->Send("GET_ACTIVE_SCHEME").Number());
    EXPECT_TRUE(host->TakeEvents().empty());
}

TEST_P(SchemeCommands, SchemesAreAddedNamedAndDeleted)
{
    const Answer added = host->Send("ADD_SCHEME", Identity("Mine", "about it", 1));
    const Answer whole = host->Send("ADD_SCHEME_ALL", Whole("Other", 1));
    if (!IsXp())
    {
        // Schemes of the Vista generation are neither added nor named here.
        EXPECT_EQ(6, added.code);
        EXPECT_EQ(6, whole.code);
        const Answer name = host->Send("GET_SCHEME_NAME", LONG{1});
        EXPECT_EQ(6, name.code);
        EXPECT_EQ(std::vector<std::byte>(552), name.reply);
        return;
    }
    ASSERT_EQ(0, added.code);
    ASSERT_EQ(0, whole.code);
    EXPECT_EQ(6, host->Send("ADD_SCHEME", Identity("Mine", "again", 1)).code);
    for (const char* name : {"\"Mine\"", "\tMine"})
    {
        EXPECT_EQ(0, host->Send("ADD_SCHEME", Identity(name, "", 1)).code) << name;
        EXPECT_EQ(6, host->Send("ADD_SCHEME", Identity(name, "again", 1)).code) << name;
    }
    host->user = environment::OtherUserName(); // may have a scheme of the same name
    EXPECT_EQ(0, host->Send("ADD_SCHEME", Identity("Mine", "his", 1)).code);
    EXPECT_EQ(6, host->Send("DELETE_SCHEME", added.Number()).code) << "another user's";
    host->user = environment::UserName();

    const auto name = host->Send("GET_SCHEME_NAME", added.Number()).As<PM_Power_Scheme_Data>();
    EXPECT_STREQ("Mine", name.name);
    EXPECT_STREQ("about it", name.desc);
    EXPECT_EQ(0, name.schemeID);
    const auto values = host->Send("QUERY_SCHEME_ALL", whole.Number()).As<PM_Power_Scheme_Data_ALL>();
    EXPECT_EQ(900, values.ac.monitorOffTimeOut);
    EXPECT_EQ(5, values.IconNum);

    EXPECT_EQ(1, host->Send("DELETE_SCHEME", added.Number()).Number());
    EXPECT_EQ(6, host->Send("DELETE_SCHEME", added.Number()).code);
    EXPECT_EQ(6, host->Send("DELETE_SCHEME", LONG{1}).code) << "one of the system's own";
    EXPECT_EQ(6, host->Send("GET_SCHEME_NAME", added.Number()).code);
}

TEST_P(SchemeCommands, ANameWithoutAnEndRunsOnIntoTheDescription)
{
    PM_Power_Scheme_Data record = Identity(std::string(32, 'n'), "tail", 1);
    seeding::SwitchLogsOn();
    EXPECT_EQ(6, host->Send("ADD_SCHEME", record).code) << "longer than a name may be";
    record = Identity(std::string(25, 'n'), "tail", 1);
    EXPECT_EQ(IsXp() ? 0 : 6, host->Send("ADD_SCHEME", record).code);
    std::memset(&record, 'z', offsetof(PM_Power_Scheme_Data, schemeID));
    EXPECT_EQ(6, host->Send("ADD_SCHEME", record).code);
}

TEST_P(SchemeCommands, TheProcessorsSpeed)
{
    constexpr LONG kPercentages[] = {50, 75, 0, 100};
    host->Send("SET_CPU_SPEED", LONG{3});
    host->TakeEvents();
    LONG previous = 100;
    for (const LONG wire : {LONG{0}, LONG{1}, LONG{2}, LONG{3}})
    {
        const Answer set = host->Send("SET_CPU_SPEED", wire);
        EXPECT_EQ(0, set.code);
        EXPECT_FALSE(set.reply.has_value());
        const std::vector<Event> events = host->TakeEvents();
        ASSERT_EQ(1U, events.size());
        EXPECT_EQ("CPU_SPEED_CHANGED", events[0].name);
        EXPECT_EQ(previous, events[0].Number()) << "the speed before";
        EXPECT_EQ(GetCurrentThreadId(), events[0].thread);
        EXPECT_EQ(wire, host->Send("GET_CPU_SPEED").Number());
        previous = kPercentages[wire];
    }
    for (const LONG wire : {LONG{4}, LONG{-1}})
    {
        EXPECT_EQ(6, host->Send("SET_CPU_SPEED", wire).code);
    }
    EXPECT_TRUE(host->TakeEvents().empty());
}

TEST_P(SchemeCommands, RepliesThatNobodyWantsAreLeftOut)
{
    const LONG added = IsXp() ? host->Send("ADD_SCHEME", Identity("Mine", "", 1)).Number() : 0;
    const PM_Variable_Data variable = Variable(1, 1, "Wifi", 1);
    const PM_Power_Scheme_Data_ALL whole = Whole("", 1);
    const LONG one = 1;
    struct Case
    {
        const char* command;
        const void* payload;
        DWORD size;
        bool onVista;
    };
    const Case kCases[] = {
        {"EDIT_SCHEME", &variable, sizeof variable, true},
        {"EDIT_SCHEME_ALL", &whole, sizeof whole, true},
        {"APPLY_SCHEME", &one, sizeof one, true},
        {"DELETE_SCHEME", &added, sizeof added, false},
    };
    for (const Case& row : kCases)
    {
        DWORD size = 4711;
        PM_Request request{};
        std::memcpy(request.command, row.command, std::strlen(row.command));
        request.userId = host->user.c_str();
        request.params = row.payload;
        request.paramsLen = row.size;
        request.resultLen = &size;
        EXPECT_EQ(row.onVista || IsXp() ? 0 : 6, host->Send(&request)) << row.command;
        EXPECT_EQ(4711U, size) << row.command;
    }
}

TEST_P(SchemeCommands, ClearingAnswersZeroAndRepliesWithNothing)
{
    host->Send("ADD_SCHEME", Identity("Mine", "", 1));
    for (const LONG selector : {LONG{2}, LONG{-1}})
    {
        const auto before = seeding::ReadBytes(ProfileFile("PowerSchemes.ini"));
        const Answer answer = host->Send("CLEAR_SCHEMES", selector);
        EXPECT_EQ(0, answer.code);
        EXPECT_EQ(0U, answer.reply->size());
        EXPECT_EQ(before, seeding::ReadBytes(ProfileFile("PowerSchemes.ini")));
    }
    seeding::SwitchLogsOn();
    for (const auto& [selector, line] : {std::pair(LONG{0}, "enter ClearORV: ClearCurrentUserSettings"),
                                         {LONG{1}, "enter ClearORV: ClearAllUserSettings"}})
    {
        EXPECT_EQ(0, host->Send("CLEAR_SCHEMES", selector).code);
        const std::vector<std::string> lines = seeding::LogLines("orvl.log");
        EXPECT_NE(lines.end(), std::find(lines.begin(), lines.end(), line));
    }
    EXPECT_FALSE(seeding::Exists(ProfileFile("UserSchemes.ini")));
}

TEST_P(SchemeCommands, AutoRunNeedsNoUser)
{
    constexpr const char* kRun = "Software\\Microsoft\\Windows\\CurrentVersion\\Run";
    host->user = "nobody";
    PM_AutoRun_Data record{};
    record.flag = 1;
    SetText(record.path, "C:\\ORVA\\ORVA.exe");
    EXPECT_EQ(0, host->Send("AUTORUN_ORVA", record).code);
    EXPECT_EQ("C:\\ORVA\\ORVA.exe", seeding::GetText(HKEY_LOCAL_MACHINE, kRun, "ORVA"));
    EXPECT_EQ(1U, seeding::GetNumber(HKEY_LOCAL_MACHINE, "Software\\Kelvo\\ORVA", "AutoRunFlag"));
    std::memset(record.path, 'p', sizeof record.path);
    EXPECT_EQ(0, host->Send("AUTORUN_ORVA", record).code);
    EXPECT_EQ(std::string(259, 'p'), seeding::GetText(HKEY_LOCAL_MACHINE, kRun, "ORVA"));
    record.flag = 0;
    EXPECT_EQ(0, host->Send("AUTORUN_ORVA", record).code);
    EXPECT_FALSE(seeding::GetText(HKEY_LOCAL_MACHINE, kRun, "ORVA").has_value());
    EXPECT_EQ(6, host->Send("AUTORUN_ORVA", record).code) << "there is nothing to take out";
}

} // namespace
