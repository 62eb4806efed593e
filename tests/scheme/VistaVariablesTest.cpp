// tests/scheme/VistaVariablesTest.cpp
//
// Single variables on the Vista path: settings of the operating system, packed copies, and the writes that
// follow from a write.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::Not;

namespace
{

// Row 1 of the reference installation.
constexpr int kScheme = 1;
constexpr GUID kProcessor = {0x54533251, 0x82BE, 0x4824, {0x96, 0xC1, 0x47, 0xB6, 0x0B, 0x74, 0x0D, 0x00}};
constexpr GUID kThrottleMaximum = {
    0xBC5038F7, 0x23E0, 0x4960, {0x96, 0xDA, 0x33, 0xAB, 0xAF, 0x59, 0x35, 0xEC}};
constexpr GUID kThrottleMinimum = {
    0x893DEE8E, 0x2BEF, 0x41E0, {0x89, 0xC6, 0xB5, 0x5D, 0x09, 0x29, 0x96, 0x4C}};
constexpr GUID kFirstPolicy = {0x68F262A7, 0xF621, 0x4069, {0xB9, 0xA5, 0x48, 0x74, 0x16, 0x9B, 0xE2, 0x3C}};
constexpr GUID kSecondPolicy = {0xBBDC3814, 0x18E9, 0x4463, {0x8A, 0x55, 0xD1, 0x97, 0x32, 0x7C, 0x45, 0xC0}};

int ProcessorSetting(bool ac, const GUID& setting)
{
    DWORD value = 0;
    EXPECT_EQ(0U, (ac ? PowerReadACValueIndex : PowerReadDCValueIndex)(nullptr, &kBalanced, &kProcessor,
                                                                       &setting, &value));
    return static_cast<int>(value);
}

using VistaVariables = OnVista<SchemeTest>;

TEST_F(VistaVariables, TimesAreWholeMinutesWhateverTheCatalogueOffers)
{
    ASSERT_TRUE(seeding::SetKey(Catalogue(), "StandbyTimeOut", "OptionNumber", "0"));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 120));
    EXPECT_EQ(1, engine.SetPwrVariable(kScheme, 0, L"StandbyTimeOut", 0));
    EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", 90));
    EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"StandbyTimeOut", -60));
    EXPECT_EQ(120, engine.GetPwrVariable(kScheme, 1, L"StandbyTimeOut"));
    EXPECT_EQ(0, engine.GetPwrVariable(kScheme, 0, L"StandbyTimeOut"));
    // Only the names as the table has them are exempt from the catalogue.
    EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"standbytimeout", 120));
}

TEST_F(VistaVariables, EveryOtherVariableComesBackAsItWasWritten)
{
    for (int number = kCpuAdaptive; number < kVariableCount; ++number)
    {
        const wchar_t* name = VariableOf(number).name;
        SCOPED_TRACE(seeding::Utf8(name));
        if (number == kBacklightLevel)
        {
            continue;
        }
        const int first = engine.GetPwrVariableOptValue(name, 0);
        const int second = engine.GetPwrVariableOptValue(name, 1);
        ASSERT_EQ(first, engine.SetPwrVariable(kScheme, 1, name, first));
        ASSERT_EQ(second, engine.SetPwrVariable(kScheme, 0, name, second));
        EXPECT_EQ(number == kLums ? second : first, engine.GetPwrVariable(kScheme, 1, name));
        EXPECT_EQ(second, engine.GetPwrVariable(kScheme, 0, name));
    }
}

TEST_F(VistaVariables, AFirstReadStoresTheDefault)
{
    for (const auto& [name, value, stored] : {std::tuple{L"CpuAdaptive", 3, "196611"},
                                              {L"CpuSpeed", 100, "6553700"},
                                              {L"LANStatus", -1, "-1"},
                                              {L"LUMS", -1, "-1"},
                                              {L"USBPort 3", -1, "-1"}})
    {
        const std::string key = seeding::Utf8(name);
        for (const int ifAC : {1, 0})
        {
            EXPECT_EQ(value, engine.GetPwrVariable(kScheme, ifAC, name)) << key;
            EXPECT_EQ(stored, Stored(kScheme, key));
        }
    }
}

TEST_F(VistaVariables, TheAdaptivePolicySetsTheProcessorUpToTheFirstRefusal)
{
    struct Row
    {
        int ifAC;
        int value;
        unsigned refused; ///< the write that fails; 0 for none
        int first;
        int second;
        int minimum;
        int maximum;
    };
    for (const Row& row :
         {Row{1, 0, 0, 4, 4, 100, 100}, Row{0, 0, 0, 5, 5, 100, 100}, Row{1, 3, 0, 2, 2, 50, 70},
          Row{0, 1, 0, 3, 3, 50, 70}, Row{1, 0, 1, 9, 9, 50, 70}, Row{1, 0, 2, 4, 9, 50, 70},
          Row{0, 0, 3, 5, 5, 50, 70}, Row{0, 0, 4, 5, 5, 100, 70}})
    {
        SCOPED_TRACE(testing::Message() << row.ifAC << row.value << row.refused);
        const bool ac = row.ifAC != 0;
        ASSERT_EQ(50, engine.SetPwrVariable(kScheme, row.ifAC, L"CpuSpeedMin", 50));
        ASSERT_EQ(70, engine.SetPwrVariable(kScheme, row.ifAC, L"CpuSpeedMax", 70));
        for (const GUID* const policy : {&kFirstPolicy, &kSecondPolicy})
        {
            const auto write = ac ? PowerWriteACValueIndex : PowerWriteDCValueIndex;
            ASSERT_EQ(0U, write(nullptr, &kBalanced, &kProcessor, policy, 9));
        }
        if (row.refused != 0)
        {
            Faults::Inject(ac ? "PowerWriteACValueIndex" : "PowerWriteDCValueIndex", row.refused,
                           ERROR_ACCESS_DENIED);
        }
        EXPECT_EQ(row.refused != 0 ? -1 : row.value,
                  engine.SetPwrVariable(kScheme, row.ifAC, L"CpuAdaptive", row.value));
        EXPECT_EQ(row.value, engine.GetPwrVariable(kScheme, row.ifAC, L"CpuAdaptive"));
        EXPECT_EQ(row.first, ProcessorSetting(ac, kFirstPolicy));
        EXPECT_EQ(row.second, ProcessorSetting(ac, kSecondPolicy));
        EXPECT_EQ(row.minimum, ProcessorSetting(ac, kThrottleMinimum));
        EXPECT_EQ(row.maximum, ProcessorSetting(ac, kThrottleMaximum));
    }
    // Speed 0 turns the policy on for its source, and another speed leaves it on.
    for (const int ifAC : {1, 0})
    {
        for (const int speed : {0, 50})
        {
            EXPECT_EQ(speed, engine.SetPwrVariable(kScheme, ifAC, L"CpuSpeed", speed));
            EXPECT_EQ(3, engine.GetPwrVariable(kScheme, ifAC, L"CpuAdaptive"));
            EXPECT_EQ(ifAC != 0 ? 2 : 3, ProcessorSetting(ifAC != 0, kFirstPolicy));
            EXPECT_EQ(ifAC != 0 ? 0 : 3, engine.GetPwrVariable(kScheme, 0, L"CpuAdaptive"));
        }
    }
}

TEST_F(VistaVariables, ARefusedReadOrWriteFails)
{
    struct Row
    {
        const wchar_t* name;
        int ac;
        int dc;
        int more; ///< what a refused write would store
    };
    for (const Row& row :
         {Row{L"MonitorOffTimeOut", 60, 120, 180}, Row{L"DiskOffTimeOut", 60, 120, 180},
          Row{L"StandbyTimeOut", 60, 120, 180}, Row{L"HibernateTimeOut", 60, 120, 180},
          Row{L"CpuSpeedMin", 50, 60, 70}, Row{L"CpuSpeedMax", 80, 90, 100}, Row{L"BacklightLevel", 3, 5, 7}})
    {
        SCOPED_TRACE(seeding::Utf8(row.name));
        for (const int ifAC : {1, 0})
        {
            ASSERT_LE(0, engine.SetPwrVariable(kScheme, ifAC, row.name, ifAC != 0 ? row.ac : row.dc));
        }
        for (const int ifAC : {1, 0})
        {
            const std::string source = ifAC != 0 ? "AC" : "DC";
            Faults::Inject("PowerWrite" + source + "ValueIndex", 1, ERROR_ACCESS_DENIED);
            EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, ifAC, row.name, row.more));
            Faults::Inject("PowerRead" + source + "ValueIndex", 1, ERROR_ACCESS_DENIED);
            EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, ifAC, row.name));
            EXPECT_TRUE(Faults::AllHit());
            Faults::Clear();
            EXPECT_EQ(ifAC != 0 ? row.ac : row.dc, engine.GetPwrVariable(kScheme, ifAC, row.name));
        }
    }
}

// The copy in the file is made where it is missing; the operating system is what counts.
TEST_F(VistaVariables, TheProcessorRangeIsTheOperatingSystems)
{
    ASSERT_EQ(80, engine.SetPwrVariable(kScheme, 1, L"CpuSpeedMax", 80));
    ASSERT_EQ(60, engine.SetPwrVariable(kScheme, 0, L"CpuSpeedMax", 60));
    EXPECT_EQ("3932240", Stored(kScheme, "CpuSpeedMax"));
    ASSERT_EQ(0U, PowerWriteDCValueIndex(nullptr, &kBalanced, &kProcessor, &kThrottleMaximum, 30));
    EXPECT_EQ(30, engine.GetPwrVariable(kScheme, 0, L"CpuSpeedMax"));
    EXPECT_EQ("3932240", Stored(kScheme, "CpuSpeedMax"));
    ASSERT_TRUE(Store(kScheme, "CpuSpeedMax", "-1"));
    EXPECT_EQ(80, engine.GetPwrVariable(kScheme, 1, L"CpuSpeedMax"));
    EXPECT_EQ("1966160", Stored(kScheme, "CpuSpeedMax"));
}

TEST_F(VistaVariables, BacklightLevelsBecomePercentages)
{
    struct Row
    {
        const char* levels;
        int level;
        int percentage; ///< -1: refused
        int readBack;
    };
    for (const Row& row : {Row{"8", 3, 42, 3}, Row{"8", 7, 100, 7}, Row{"7", 7, 116, 7}, Row{"8", 0, 0, 0},
                           Row{"5", 7, -1, 0}, Row{"1", 0, -1, 0}, Row{"0", 0, -1, -1}, Row{"-3", 0, -1, -1}})
    {
        SCOPED_TRACE(testing::Message() << row.levels << " levels, " << row.level);
        ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", "MaxBrightLevel", row.levels));
        EXPECT_EQ(row.percentage, engine.SetPwrVariable(kScheme, 1, L"BacklightLevel", row.level));
        // The copy is merged before the conversion can fail.
        EXPECT_EQ(std::to_string(row.level), Stored(kScheme, "BacklightLevel"));
        const auto calls =
            CallsOf([&] { EXPECT_EQ(row.readBack, engine.GetPwrVariable(kScheme, 1, L"BacklightLevel")); });
        if (row.readBack < 0)
        {
            EXPECT_THAT(calls, Not(Contains("PowerReadACValueIndex")));
        }
    }
}

TEST_F(VistaVariables, ABrokenSettingReachesNoPowerFunction)
{
    for (const char* const key : {"Guid", "SubGroupGuid"})
    {
        const std::string sound = seeding::GetKey(Catalogue(), "MonitorOffTimeOut", key);
        for (const char* text : {"", "nonsense", "{3C0BC021-C8A8-4E07-A973-6B14CBCB2B7", "{}"})
        {
            ASSERT_TRUE(seeding::SetKey(Catalogue(), "MonitorOffTimeOut", key, text));
            const auto calls = CallsOf(
                [&]
                {
                    EXPECT_EQ(-1, engine.GetPwrVariable(kScheme, 1, L"MonitorOffTimeOut"));
                    EXPECT_EQ(-1, engine.SetPwrVariable(kScheme, 1, L"MonitorOffTimeOut", 60));
                });
            EXPECT_THAT(calls, Not(Contains("PowerReadACValueIndex")));
            EXPECT_THAT(calls, Not(Contains("PowerWriteACValueIndex")));
        }
        ASSERT_TRUE(seeding::SetKey(Catalogue(), "MonitorOffTimeOut", key, sound));
    }
}

TEST_F(VistaVariables, NamesWithSettingsNeedTheCatalogueAndOthersDont)
{
    GUID group{};
    GUID setting{};
    const auto calls = CallsOf([&] { EXPECT_EQ(7, engine.ParseVarName(L"CPUSPEED", &group, &setting)); });
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(0, engine.ParseVarName(L"MonitorOffTimeOut", &group, &setting));
    EXPECT_EQ(8, engine.ParseVarName(L"BacklightLevel", &group, &setting));
    EXPECT_EQ(0xADED5E82U, setting.Data1);
    EXPECT_EQ(-1, engine.ParseVarName(L"BacklightLevel", nullptr, &setting));
    EXPECT_EQ(-1, engine.ParseVarName(L"Nothing", &group, &setting));
    engine.m_bVista = 0;
    EXPECT_EQ(-1, engine.ParseVarName(L"BacklightLevel", &group, &setting));
    EXPECT_EQ(8, engine.ParseVarName(L"BacklightLevel"));
}

} // namespace
