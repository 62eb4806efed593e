// agents/LanAgentTest.cpp
//
// Which adapter counts, what its speed is taken from, and when its state can be read and changed.

#include "agents/AgentsTest.h"

#include "agents/LanAgent.h"
#include "notebook/Adapters.h"
#include "notebook/DeviceTree.h"

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

    /// An adapter and what its driver key holds; null for a value that isn't there.
    struct DriverKey
    {
        const char* description;
        const char* plain;    ///< "DuplexMode"
        const char* standard; ///< "*SpeedDuplex"
    };

    /// Makes these the only adapters.
    static void UseAdapters(const std::vector<DriverKey>& keys)
    {
        Adapters::Clear();
        for (const DriverKey& key : keys)
        {
            Adapters::Settings settings;
            for (const auto& [name, text] :
                 {std::pair{"DuplexMode", key.plain}, {"*SpeedDuplex", key.standard}})
            {
                if (text != nullptr)
                {
                    settings.emplace_back(name, text);
                }
            }
            Adapters::Add(key.description, settings);
        }
    }

    /// A value of the driver key of the adapter with that number, or "none".
    static std::string Stored(std::size_t index, const char* name)
    {
        return Adapters::Setting(Adapters::All().at(index), name).value_or("none");
    }

    CLanAgent agent;
};

TEST_F(LanAgentTest, SpeedIsStoredWhereTheDriverKeepsIt)
{
    const struct
    {
        DriverKey adapter;
        int level;
        int result;
        const char* plain;
        const char* standard;
    } cases[] = {
        {{"Realtek GBE", "0", nullptr}, 5, 5, "5", "none"},
        {{"Realtek GBE", nullptr, "0"}, 5, 5, "none", "6"},
        {{"Realtek GBE", nullptr, "0"}, 4, 4, "none", "4"},
        {{"Realtek GBE", nullptr, "0"}, 6, -1, "none", "0"},
        {{"Realtek GBE", "0", nullptr}, 6, 6, "6", "none"},
        {{"Realtek GBE", nullptr, nullptr}, 1, -1, "none", "none"},
        {{"JMicron GBE", "0", "0"}, 5, 5, "0", "5"},
        {{"JMicron GBE", "0", nullptr}, 5, -1, "0", "none"},
        {{"REALTEK GBE", "0", "0"}, 5, -1, "0", "0"},
        {{"Realtek GBE", "0", "0"}, -1, -1, "0", "0"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(std::string(row.adapter.description) + ' ' + std::to_string(row.level));
        UseAdapters({row.adapter});
        agent.Initialize();
        EXPECT_EQ(row.result, agent.SetLanSpeed(row.level));
        EXPECT_EQ(row.plain, Stored(0, "DuplexMode"));
        EXPECT_EQ(row.standard, Stored(0, "*SpeedDuplex"));
    }
}

// An agent without words knows no adapter.
TEST_F(LanAgentTest, WithoutInitializeNoAdapterMatches)
{
    UseAdapters({{"Realtek Wireless", "1", "2"}, {"JMicron GBE", "3", "4"}});
    CLanAgent fresh;
    EXPECT_EQ(-1, fresh.SetLanSpeed(5));
    EXPECT_EQ(-1, fresh.GetLanSpeed());
    EXPECT_EQ("1 2 3 4", Stored(0, "DuplexMode") + ' ' + Stored(0, "*SpeedDuplex") + ' ' +
                             Stored(1, "DuplexMode") + ' ' + Stored(1, "*SpeedDuplex"));
    EXPECT_EQ(-1, fresh.ApplySettings());
    EXPECT_EQ(-1, fresh.GetLANConnectStatus());
    EXPECT_EQ(-1, fresh.SetWLANConnectStatus(0));
}

TEST_F(LanAgentTest, SpeedIsReadFromTheFirstAdapterThatHasOne)
{
    const std::pair<std::vector<DriverKey>, int> cases[] = {
        {{{"Realtek GBE", "3", nullptr}}, 3},
        {{{"Realtek GBE", nullptr, "6"}}, 5},
        {{{"Realtek GBE", nullptr, "5"}}, -1},
        {{{"JMicron GBE", "3", "6"}}, 6},
        {{{"Other GBE", "1", nullptr}, {"Realtek GBE", nullptr, nullptr}, {"Realtek GBE", "2", nullptr}}, 2},
        // The second word changes the value's name for the adapters behind it too.
        {{{"JMicron GBE", nullptr, nullptr}, {"Realtek GBE", "2", "3"}}, 3},
        {{}, -1},
    };
    for (const auto& [adapters, level] : cases)
    {
        UseAdapters(adapters);
        agent.Initialize();
        EXPECT_EQ(level, agent.GetLanSpeed()) << adapters.size();
    }
    EXPECT_THAT(NewLogLines(), testing::Contains("Cannot find the hardware."));
}

// Nothing vouches for a value's type, terminator or size.
TEST_F(LanAgentTest, SpeedIsReadFromMalformedValuesUpToTheirEnd)
{
    const std::pair<std::vector<BYTE>, int> cases[] = {
        {{'3', 0}, 3},
        {{'3', 0, '4'}, 3},
        {{'3'}, 0},
        {std::vector<BYTE>(520, ' '), 0},
        {std::vector<BYTE>(522), -1},
    };
    UseAdapters({{"Realtek GBE", "1", nullptr}});
    HKEY key = nullptr;
    ASSERT_EQ(0, RegOpenKeyExW(HKEY_LOCAL_MACHINE,
                               L"SYSTEM\\CurrentControlSet\\Control\\Class\\"
                               L"{4D36E972-E325-11CE-BFC1-08002BE10318}\\0000",
                               0, KEY_ALL_ACCESS, &key));
    for (const auto& [bytes, level] : cases)
    {
        EXPECT_EQ(0, RegSetValueExW(key, L"DuplexMode", 0, REG_BINARY, bytes.data(),
                                    static_cast<DWORD>(bytes.size())));
        EXPECT_EQ(level, agent.GetLanSpeed()) << bytes.size();
    }
    RegCloseKey(key);
}

TEST_F(LanAgentTest, SpeedIsStoredForEveryAdapterAndOneSuccessIsEnough)
{
    UseAdapters({{"Realtek GBE", "1", nullptr}, {"Other", "1", nullptr}, {"Realtek FE", "1", nullptr}});
    EXPECT_EQ(2, agent.SetLanSpeed(2));
    EXPECT_EQ("2", Stored(0, "DuplexMode"));
    EXPECT_EQ("1", Stored(1, "DuplexMode"));
    EXPECT_EQ("2", Stored(2, "DuplexMode"));

    Faults::Inject("RegSetValueExW", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(3, agent.SetLanSpeed(3));
    EXPECT_EQ("2", Stored(0, "DuplexMode"));
    EXPECT_EQ("3", Stored(2, "DuplexMode"));
}

TEST_F(LanAgentTest, AdapterStateDecidesWhatCanBeReadAndChanged)
{
    constexpr struct
    {
        const char* key; ///< a line of the machine's file
        const char* value;
        int status; ///< from the status queries
        int enable; ///< result of enabling
        int disable;
    } kStates[] = {
        {"Present", "1", 1, -1, 1},       {"DisabledInProfile", "1", 0, 1, -1},
        {"SwitchedOff", "1", -1, -1, -1}, {"Disableable", "0", -1, -1, -1},
        {"Problem", "10", 1, -1, 1},      {"Present", "0", -1, -1, -1},
    };
    constexpr struct
    {
        const char* description;
        int (CLanAgent::*get)() noexcept;
        int (CLanAgent::*set)(int) noexcept;
    } kKinds[] = {
        {"vendor REALTEK card", &CLanAgent::GetLANConnectStatus, &CLanAgent::SetLANConnectStatus},
        {"vendor WIFI card", &CLanAgent::GetWLANConnectStatus, &CLanAgent::SetWLANConnectStatus},
    };
    for (const auto& kind : kKinds)
    {
        for (const auto& state : kStates)
        {
            SCOPED_TRACE(std::string(kind.description) + ' ' + state.key + '=' + state.value);
            for (const int enable : {0, 1})
            {
                UseOneAdapter(kind.description);
                DeviceTree::SetValue(kAdapter, state.key, state.value);
                EXPECT_EQ(state.status, (agent.*kind.get)());
                const int expected = enable != 0 ? state.enable : state.disable;
                EXPECT_EQ(expected, (agent.*kind.set)(enable));
                if (expected == 1)
                {
                    EXPECT_EQ(enable, (agent.*kind.get)());
                }
            }
        }
    }
}

TEST_F(LanAgentTest, StatusQueriesSayInTheirOwnWordsWhyTheyFail)
{
    UseOneAdapter("neither");
    NewLogLines();
    EXPECT_EQ(-1, agent.GetLANConnectStatus());
    EXPECT_EQ(-1, agent.GetWLANConnectStatus());
    Faults::Inject("CM_Get_DevNode_Status", 1, 0x13, true);
    UseOneAdapter("Realtek Wireless");
    EXPECT_EQ(-1, agent.GetLANConnectStatus());
    EXPECT_EQ(-1, agent.GetWLANConnectStatus());
    Faults::Clear();
    EXPECT_EQ(1, agent.GetLANConnectStatus());
    EXPECT_EQ(-1, agent.SetWLANConnectStatus(1));
    EXPECT_THAT(
        NewLogLines(),
        testing::ElementsAre(
            "GetLANConnectStatus: SetupDiEnumDeviceInfo failed!", "",
            "GetWLANConnectStatus: SetupDiEnumDeviceInfo failed 259!", "",
            "GetLANConnectStatus: CM_Get_DevNode_Status failed!", "",
            "GetWLANConnectStatus: CM_Get_DevNode_Status failed!", "",
            "GetLANConnectStatus: Status=25174026, Problem=0!", "",
            "GetLANConnectStatus: !((Status & DN_DISABLEABLE) && (CM_PROB_HARDWARE_DISABLED != Problem))",
            "!((Status & DN_HAS_PROBLEM) && (CM_PROB_DISABLED == Problem))"));
}

TEST_F(LanAgentTest, ApplySettingsRestartsTheFirstAdapterOfThatSpelling)
{
    UseOneAdapter("REALTEK card");
    EXPECT_EQ(-1, agent.ApplySettings());
    UseOneAdapter("Realtek card");
    EXPECT_EQ(1, agent.ApplySettings());
    EXPECT_EQ(1U, DeviceTree::Restarts(kAdapter));
    Faults::Inject("SetupDiChangeState", 1, ERROR_ACCESS_DENIED);
    EXPECT_EQ(1, agent.ApplySettings());
    EXPECT_EQ(1U, DeviceTree::Restarts(kAdapter));
}

} // namespace
