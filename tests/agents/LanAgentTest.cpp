// agents/LanAgentTest.cpp
//
// Which adapter is used, where its speed comes from, and when its state can be read and changed.

#include "agents/AgentsTest.h"

#include "agents/LanAgent.h"
#include "control/Adapters.h"
#include "control/RegistryEditor.h"
#include "machine/DeviceTree.h"

using namespace simulated;

namespace
{

class LanAgentTest : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        agent.Initialize();
    }

    static constexpr const char* kPlain = "DuplexMode";
    static constexpr const char* kStandard = "*SpeedDuplex";

    /// A description and what the driver key holds.
    using Adapter = std::pair<const char*, Adapters::Settings>;

    /// Makes these the only adapters.
    static void UseAdapters(const std::vector<Adapter>& adapters)
    {
        Adapters::Clear();
        for (const auto& [description, settings] : adapters)
        {
            ASSERT_NE("", Adapters::Add(description, settings));
        }
    }

    /// The values of the driver key of the adapter with that number.
    static std::string Stored(std::size_t index)
    {
        const std::string adapter = Adapters::All().at(index);
        return Adapters::Setting(adapter, kPlain).value_or("none") + ' ' +
               Adapters::Setting(adapter, kStandard).value_or("none");
    }

    CLanAgent agent;
};

TEST_F(LanAgentTest, SpeedIsStoredWhereTheDriverKeepsIt)
{
    const struct
    {
        Adapter adapter;
        int level;
        int result;
        const char* stored;
    } cases[] = {
        {{"Realtek GBE", {{kPlain, "0"}}}, 5, 5, "5 none"},
        {{"Realtek GBE", {{kStandard, "0"}}}, 5, 5, "none 6"},
        {{"Realtek GBE", {{kStandard, "0"}}}, 4, 4, "none 4"},
        {{"Realtek GBE", {{kStandard, "0"}}}, 6, -1, "none 0"},
        {{"Realtek GBE", {{kPlain, "0"}}}, 6, 6, "6 none"},
        {{"Realtek GBE", {}}, 1, -1, "none none"},
        {{"JMicron GBE", {{kPlain, "0"}, {kStandard, "0"}}}, 5, 5, "0 5"},
        {{"JMicron GBE", {{kPlain, "0"}}}, 5, -1, "0 none"},
        {{"REALTEK GBE", {{kPlain, "0"}, {kStandard, "0"}}}, 5, -1, "0 0"},
        {{"Realtek GBE", {{kPlain, "1"}, {kStandard, "1"}}}, 0, 0, "0 1"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.stored);
        UseAdapters({row.adapter});
        agent.Initialize();
        EXPECT_EQ(row.result, agent.SetLanSpeed(row.level));
        EXPECT_EQ(row.stored, Stored(0));
    }
    NewLogLines();
    EXPECT_EQ(-1, agent.SetLanSpeed(-1));
    EXPECT_EQ("The input value is invalid.", NewLogLines().at(0));
    UseOneAdapter("REALTEK card");
    EXPECT_EQ(-1, agent.ApplySettings()) << "of another spelling";
    EXPECT_EQ(-1, CLanAgent().ApplySettings()) << "without its words an agent knows no adapter";
}

TEST_F(LanAgentTest, SpeedIsReadFromTheFirstAdapterThatHasOne)
{
    const std::pair<std::vector<Adapter>, int> cases[] = {
        {{{"Realtek GBE", {{kPlain, "3"}}}}, 3},
        {{{"Realtek GBE", {{kStandard, "6"}}}}, 5},
        {{{"Realtek GBE", {{kStandard, "5"}}}}, -1},
        {{{"JMicron GBE", {{kPlain, "3"}, {kStandard, "6"}}}}, 6},
        {{{"Other GBE", {{kPlain, "1"}}}, {"Realtek GBE", {}}, {"Realtek GBE", {{kPlain, "2"}}}}, 2},
        // The second word changes the value's name for the adapters behind it too.
        {{{"JMicron GBE", {}}, {"Realtek GBE", {{kPlain, "2"}, {kStandard, "3"}}}}, 3},
        {{}, -1},
    };
    for (const auto& [adapters, level] : cases)
    {
        UseAdapters(adapters);
        agent.Initialize();
        EXPECT_EQ(level, agent.GetLanSpeed()) << adapters.size();
    }
}

TEST_F(LanAgentTest, SpeedIsStoredForEveryAdapterAndOneSuccessIsEnough)
{
    UseAdapters(
        {{"Realtek GBE", {{kPlain, "1"}}}, {"Other", {{kPlain, "1"}}}, {"Realtek FE", {{kPlain, "1"}}}});
    EXPECT_EQ(2, agent.SetLanSpeed(2));
    EXPECT_EQ("2 none 1 none 2 none", Stored(0) + ' ' + Stored(1) + ' ' + Stored(2));
    Faults::Inject("RegSetValueExW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(3, agent.SetLanSpeed(3));
    EXPECT_EQ("2 none 3 none", Stored(0) + ' ' + Stored(2));
    const std::string key = "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Class\\" +
                            DeviceTree::Value(Adapters::All().at(2), "Driver").value_or("");
    EXPECT_EQ(std::string("3\0\0\0", 4), RegistryEditor::Read(key, kPlain).value_or(registry::Value()).bytes)
        << "a text with its terminator";
}

TEST_F(LanAgentTest, AdapterStateDecidesWhatCanBeReadAndChanged)
{
    constexpr const char* kRuns = "!((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))";
    constexpr const char* kIsOff = "(Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem)";
    constexpr const char* kStays = "!((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))";
    constexpr struct
    {
        const char* key; ///< a line of the machine's file
        const char* value;
        int status;             ///< from the status queries
        const char* refusal[2]; ///< why it can't be disabled or enabled, null when it can
    } kStates[] = {
        {"Present", "1", 1, {nullptr, kRuns}},     {"DisabledInProfile", "1", 0, {kIsOff, nullptr}},
        {"SwitchedOff", "1", -1, {kStays, kRuns}}, {"Disableable", "0", -1, {kStays, kRuns}},
        {"Problem", "10", 1, {nullptr, kRuns}},    {"Present", "0", -1, {"", ""}},
    };
    for (const auto& [description, get, set] :
         {std::tuple{"vendor REALTEK card", &CLanAgent::GetLANConnectStatus, &CLanAgent::SetLANConnectStatus},
          {"vendor WIFI card", &CLanAgent::GetWLANConnectStatus, &CLanAgent::SetWLANConnectStatus}})
    {
        for (const auto& state : kStates)
        {
            for (const int enable : {0, 1})
            {
                SCOPED_TRACE(std::string(description) + ' ' + state.key + std::to_string(enable));
                UseOneAdapter(description);
                DeviceTree::SetValue(kAdapter, state.key, state.value);
                EXPECT_EQ(state.status, (agent.*get)());
                NewLogLines();
                const char* const refusal = state.refusal[enable];
                EXPECT_EQ(refusal == nullptr ? 1 : -1, (agent.*set)(enable));
                const std::vector<std::string> lines = NewLogLines();
                EXPECT_EQ(refusal == nullptr ? "" : refusal, lines.empty() ? "" : lines[0]);
                EXPECT_TRUE(refusal != nullptr || (agent.*get)() == enable);
            }
        }
    }
    const std::string tooLong = "REALTEK" + std::string(254, 'x');
    UseAdapters({{tooLong.c_str(), {}}});
    EXPECT_EQ(-1, agent.GetLANConnectStatus()) << "a description that doesn't fit is none";
}

} // namespace
