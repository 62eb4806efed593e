// tests/scheme/VistaVariablesTest.cpp
//
// Single variables on the Vista back end: settings of the operating system, packed copies, and the writes
// that follow from a write.

#include "scheme/SchemeTest.h"
#include "scheme/VariableTable.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>

using namespace simulated;
using testing::AnyOf;
using testing::Each;
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
    ASSERT_TRUE(seeding::SetKey(kCatalogue, "StandbyTimeOut", "OptionNumber", "0"));
    // Only the names as the table has them are exempt from the catalogue.
    Run("set 1 ac StandbyTimeOut = 120 -> 1; set 1 dc StandbyTimeOut = 0 -> 1; "
        "set 1 ac StandbyTimeOut = 90 -> -1; set 1 ac StandbyTimeOut = -60 -> -1; "
        "set 1 ac standbytimeout = 120 -> -1; get 1 ac StandbyTimeOut -> 120; "
        "get 1 dc StandbyTimeOut -> 0");
}

TEST_F(VistaVariables, EveryOtherVariableComesBackAsItWasWritten)
{
    for (int number = kCpuAdaptive; number < kVariableCount; ++number)
    {
        const std::string name = seeding::Utf8(VariableOf(number).name);
        const std::string first = std::to_string(engine.GetPwrVariableOptValue(VariableOf(number).name, 0));
        const std::string second = std::to_string(engine.GetPwrVariableOptValue(VariableOf(number).name, 1));
        Run("set 1 ac " + name + " = " + first + " -> " + first);
        Run("set 1 dc " + name + " = " + second + " -> " + (number == kBacklightLevel ? "14" : second));
        Run("get 1 ac " + name + " -> " + (number == kLums ? second : first));
        Run("get 1 dc " + name + " -> " + second);
    }
}

TEST_F(VistaVariables, AFirstReadStoresTheDefault)
{
    for (const auto& [read, stored] :
         {std::pair{"CpuAdaptive -> 3", "196611"}, std::pair{"CpuSpeed -> 100", "6553700"},
          std::pair{"LUMS -> -1", "-1"}, std::pair{"USBPort 3 -> -1", "-1"}})
    {
        for (const char* const source : {"get 1 ac ", "get 1 dc "})
        {
            Run(source + std::string(read));
            EXPECT_EQ(stored, Stored(kScheme, std::string(read, std::string(read).find(" ->"))));
        }
    }
}

TEST_F(VistaVariables, TheAdaptivePolicySetsTheProcessorUpToTheFirstRefusal)
{
    using Row = std::tuple<std::string, int, unsigned, std::array<int, 4>>;
    // The source, the policy, the write that fails (0 for none), the settings then.
    for (const auto& [source, value, refused, settings] :
         {Row{" 1 ac ", 0, 0, {4, 4, 100, 100}}, Row{" 1 ac ", 3, 0, {2, 2, 50, 70}},
          Row{" 1 ac ", 0, 1, {2, 2, 50, 70}}, Row{" 1 ac ", 0, 2, {4, 2, 50, 70}},
          Row{" 1 dc ", 0, 0, {5, 5, 100, 100}}, Row{" 1 dc ", 1, 0, {3, 3, 50, 70}},
          Row{" 1 dc ", 0, 3, {5, 5, 50, 70}}, Row{" 1 dc ", 0, 4, {5, 5, 100, 70}}})
    {
        const bool ac = source == " 1 ac ";
        Run("set" + source + "CpuSpeedMin = 50 -> 50; set" + source + "CpuSpeedMax = 70 -> 70");
        if (refused != 0)
        {
            Faults::Inject(ac ? "PowerWriteACValueIndex" : "PowerWriteDCValueIndex", refused,
                           ERROR_ACCESS_DENIED);
        }
        const std::string number = std::to_string(value);
        Run("set" + source + "CpuAdaptive = " + number + " -> " + (refused != 0 ? "-1" : number));
        Run("get" + source + "CpuAdaptive -> " + number);
        EXPECT_EQ(
            settings,
            (std::array{ProcessorSetting(ac, kFirstPolicy), ProcessorSetting(ac, kSecondPolicy),
                        ProcessorSetting(ac, kThrottleMinimum), ProcessorSetting(ac, kThrottleMaximum)}))
            << source << value << refused;
    }
    // Speed 0 turns the policy on for its source, and another speed leaves it on.
    Run("set 1 ac CpuAdaptive = 0 -> 0; set 1 dc CpuSpeed = 0 -> 0; get 1 ac CpuAdaptive -> 0; "
        "get 1 dc CpuAdaptive -> 3; set 1 dc CpuAdaptive = 1 -> 1; set 1 ac CpuSpeed = 0 -> 0; "
        "get 1 ac CpuAdaptive -> 3; set 1 ac CpuSpeed = 50 -> 50; get 1 ac CpuAdaptive -> 3; "
        "get 1 dc CpuAdaptive -> 1");
    EXPECT_EQ(2, ProcessorSetting(true, kFirstPolicy));
}

// Those that are settings and nothing else are in the transcripts.
TEST_F(VistaVariables, ARefusedReadOrWriteFails)
{
    for (const auto& [name, value, other] :
         {std::tuple{"CpuSpeedMin", "50", "60"}, std::tuple{"CpuSpeedMax", "80", "90"},
          std::tuple{"BacklightLevel", "3", "5"}})
    {
        for (const std::string source : {"ac", "dc"})
        {
            const std::string calls = source == "ac" ? "ACValueIndex" : "DCValueIndex";
            const std::string variable = " 1 " + source + ' ' + name;
            EXPECT_LE(0, ResultOf("set" + variable + " = " + value));
            Faults::Inject("PowerWrite" + calls, 1, ERROR_ACCESS_DENIED);
            Run("set" + variable + " = " + other + " -> -1");
            Faults::Inject("PowerRead" + calls, 1, ERROR_ACCESS_DENIED);
            Run("get" + variable + " -> -1; get" + variable + " -> " + value);
        }
    }
}

// The copy in the file is made where it is missing; the operating system is what counts.
TEST_F(VistaVariables, TheProcessorRangeIsTheOperatingSystems)
{
    Run("set 1 ac CpuSpeedMax = 80 -> 80; set 1 dc CpuSpeedMax = 60 -> 60");
    ASSERT_EQ(0U, PowerWriteDCValueIndex(nullptr, &kBalanced, &kProcessor, &kThrottleMaximum, 30));
    Run("get 1 dc CpuSpeedMax -> 30");
    ASSERT_TRUE(Store(kScheme, "CpuSpeedMax", "-1"));
    Run("get 1 ac CpuSpeedMax -> 80");
    EXPECT_EQ("1966160", Stored(kScheme, "CpuSpeedMax"));
}

TEST_F(VistaVariables, BacklightLevelsBecomePercentages)
{
    // How many levels there are, the level that is written with its percentage, what is read.
    for (const auto& [levels, level, percentage, readBack] :
         {std::tuple{"8", "3", "42", "3"}, std::tuple{"8", "7", "100", "7"}, std::tuple{"7", "7", "116", "7"},
          std::tuple{"8", "0", "0", "0"}, std::tuple{"5", "7", "-1", "0"}, std::tuple{"1", "0", "-1", "0"},
          std::tuple{"0", "0", "-1", "-1"}, std::tuple{"-3", "0", "-1", "-1"}})
    {
        ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", "MaxBrightLevel", levels));
        Run(std::string("set 1 ac BacklightLevel = ") + level + " -> " + percentage);
        // The copy is merged before the conversion can fail.
        EXPECT_EQ(level, Stored(kScheme, "BacklightLevel"));
        Trace::Clear();
        Run(std::string("get 1 ac BacklightLevel -> ") + readBack);
        EXPECT_EQ(*readBack == '-' ? 0U : 1U, Trace::CallsOf("PowerReadACValueIndex").size());
    }
}

TEST_F(VistaVariables, ABrokenSettingReachesNoPowerFunction)
{
    for (const char* const key : {"Guid", "SubGroupGuid"})
    {
        const std::string sound = seeding::GetKey(kCatalogue, "MonitorOffTimeOut", key);
        ASSERT_TRUE(seeding::SetKey(kCatalogue, "MonitorOffTimeOut", key, "nonsense"));
        EXPECT_THAT(
            CallsOf([&] { Run("get 1 ac MonitorOffTimeOut -> -1; set 1 ac MonitorOffTimeOut = 60 -> -1"); }),
            Each(Not(AnyOf("PowerReadACValueIndex", "PowerWriteACValueIndex"))));
        ASSERT_TRUE(seeding::SetKey(kCatalogue, "MonitorOffTimeOut", key, sound));
    }
}

TEST_F(VistaVariables, NamesWithSettingsNeedTheCatalogueAndOthersDont)
{
    GUID group{};
    GUID setting{};
    EXPECT_EQ(0, engine.ParseVarName(L"MonitorOffTimeOut", &group, &setting));
    EXPECT_EQ(0x3C0BC021U, setting.Data1);
    seeding::Remove(kCatalogue);
    EXPECT_EQ(7, engine.ParseVarName(L"CPUSPEED", &group, &setting));
    EXPECT_EQ(-1, engine.ParseVarName(L"BacklightLevel", &group, &setting));
    EXPECT_EQ(-2, engine.ParseVarName(L"CpuSpeed", nullptr, &setting) +
                      engine.ParseVarName(L"CpuSpeed", &group, nullptr));
    engine.m_bVista = 0;
    EXPECT_EQ(-1, engine.ParseVarName(L"CpuSpeed", &group, &setting));
    EXPECT_EQ(8, engine.ParseVarName(L"BacklightLevel"));
}

} // namespace
