// tests/transcripts/Scene.cpp
//
// Seeds the notebook by its control interface and by requests.

#include "transcripts/Scene.h"

#include "acceptance/RequestWords.h"
#include "acceptance/Seeding.h"
#include "base/Trace.h"
#include "control/Adapters.h"
#include "control/Batteries.h"
#include "control/Notebook.h"
#include "control/PowerSource.h"
#include "control/RegistryEditor.h"
#include "machine/Accounts.h"
#include "machine/EmbeddedController.h"
#include "machine/Machine.h"
#include "modules/kernel32/DebugOutput.h"

#include <powrprof.h>

#include <gtest/gtest.h>

#include <cstring>

using namespace simulated;

namespace
{

constexpr const char* kLogs[] = {"trxpm.log", "orvl.log"};
constexpr GUID kBalanced = {0x381B4222, 0xF694, 0x41F0, {0x96, 0x85, 0xFF, 0x5B, 0xB2, 0x60, 0xDF, 0x2E}};
constexpr int kFirstOwnScheme = 6;

// What schemes 6 to 8 hold; those of 7 are what most samples read.
constexpr const char* kValues[] = {
    "ac.cpuSpeed=100 ac.backlightLevel=7 ac.lanSpeed=1 ac.lums=2 ac.monitorOffTimeOut=900 "
    "ac.standbyTimeOut=1800 ac.wifi=1 ac.lanStatus=1 ac.threeG=0 dc.cpuSpeed=50 dc.backlightLevel=3 "
    "dc.lanSpeed=2 dc.monitorOffTimeOut=300 dc.standbyTimeOut=600 dc.wifi=0 dc.lanStatus=0 dc.threeG=1 "
    "IfDefault=1 IconNum=5 IfShow=2",
    "ac.cpuSpeed=75 ac.backlightLevel=6 ac.lanSpeed=4 ac.lums=3 ac.monitorOffTimeOut=1500 "
    "ac.standbyTimeOut=2700 ac.wifi=1 ac.lanStatus=0 ac.threeG=1 dc.cpuSpeed=100 dc.backlightLevel=4 "
    "dc.lanSpeed=3 dc.monitorOffTimeOut=180 dc.standbyTimeOut=1200 dc.wifi=0 dc.lanStatus=1 dc.threeG=0 "
    "IfDefault=3 IconNum=9 IfShow=4",
    "ac.cpuSpeed=50 ac.backlightLevel=5 ac.lanSpeed=2 ac.lums=4 ac.monitorOffTimeOut=600 "
    "ac.standbyTimeOut=3600 ac.wifi=0 ac.lanStatus=1 ac.threeG=1 dc.cpuSpeed=75 dc.backlightLevel=2 "
    "dc.lanSpeed=1 dc.monitorOffTimeOut=120 dc.standbyTimeOut=900 dc.wifi=1 dc.lanStatus=0 dc.threeG=0 "
    "IfDefault=4 IconNum=7 IfShow=1",
};

void RemoveLogs()
{
    for (const char* const log : kLogs)
    {
        seeding::Remove(std::string("C:\\temp1234567890\\") + log);
    }
}

std::string ProfileFile(const char* name)
{
    return seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\" + name;
}

// A scheme of the system's on the GUID-based power manager, and its text.
GUID OwnScheme(int number)
{
    return {0x0F000000U + static_cast<DWORD>(number), 0, 0x4000, {0x80, 0, 0, 0, 0, 0, 0xC0, 0xDE}};
}

std::string OwnSchemeText(int number)
{
    return "{0F00000" + std::to_string(number) + "-0000-4000-8000-00000000C0DE}";
}

// Lets `change` edit the record in the value "Policies" of a key.
template <class Record, class Change>
void EditPolicies(const std::string& key, Change change)
{
    registry::Value value = RegistryEditor::Read(key, "Policies").value();
    Record record;
    ASSERT_EQ(sizeof record, value.bytes.size());
    std::memcpy(&record, value.bytes.data(), sizeof record);
    change(record);
    value.bytes.assign(reinterpret_cast<const char*>(&record), sizeof record);
    EXPECT_TRUE(RegistryEditor::Write(key, "Policies", value));
}

std::string Counts()
{
    std::string text;
    const auto counts = Trace::Counts();
    for (std::size_t index = 0; index < counts.size(); ++index)
    {
        if (counts[index] != 0)
        {
            text += (text.empty() ? "" : ", ") + std::string(Name(static_cast<CallClass>(index))) + ' ' +
                    std::to_string(counts[index]);
        }
    }
    return text;
}

// What went to the debugger, with a visible line end.
std::vector<std::string> DebuggerLines()
{
    std::vector<std::string> lines = DebugOutput::Texts();
    for (std::string& line : lines)
    {
        if (const std::size_t end = line.find_last_not_of("\r\n") + 1; end < line.size())
        {
            line.replace(end, line.npos, "\\n");
        }
    }
    return lines;
}

} // namespace

Scene::Scene(DWORD major) : m_major(major)
{
    environment::Recreate(major);
    m_folder = Machine::Folder();
    Trace::Record(false);
    SeedHardware();
    SeedUsersPolicy();
    m_service = std::make_unique<BoardService>();
    m_host.emplace();
    m_host->Uninitialize(); // the calls and log lines of its thread aren't a request's
    SeedSchemes();
    m_host->user = Notebook::kFirstUser;
    Expect("GET_LCD_BRIGHTNESS", ""); // on Vista the driver stays open from here on
    seeding::SwitchLogsOn();
    m_service->TakeRequests();
    m_snapshot.emplace(m_folder);
    m_state = Observe();
}

Scene::~Scene() = default;

void Scene::Expect(const char* command, const std::string& fields)
{
    EXPECT_EQ(0, m_host->Send(command, PayloadOf(command, fields)).code) << command << ' ' << fields;
}

void Scene::SeedHardware() const
{
    // On battery with half of the charge; the second battery is the smaller one.
    EXPECT_TRUE(PowerSource::SetCapacity(48000, 24000));
    EXPECT_TRUE(PowerSource::SetRate(12000));
    EXPECT_TRUE(PowerSource::SetMains(false));
    EXPECT_TRUE(PowerSource::AllowHibernate(true));
    Batteries::SetValue(0, "DesignedCapacity", "48840");
    Batteries::SetValue(0, "FullChargedCapacity", "41210");
    Batteries::Add();
    Batteries::SetValue(1, "Chemistry", "NiMH");
    Batteries::SetValue(1, "DesignedCapacity", "24420");
    Batteries::SetValue(1, "FullChargedCapacity", "20333");
    EmbeddedController::SetBattery(15,
                                   {0x12, 0x34, 0x56, 0x78, 0x9A, 0xBC, 0xDE, 0xF0, 0x11, 0x22, 0x33, 0x44});
    EmbeddedController::SetItem(EmbeddedController::kLan, 0);
    EXPECT_TRUE(Adapters::SetSetting(Adapters::All().at(0), "DuplexMode", "4"));
    EXPECT_NE("", Adapters::Add("Intel(R) PRO/1000 PL Network Connection",
                                {{"*SpeedDuplex", "5"}, {"DuplexMode", "5"}}));
    EXPECT_NE("", Adapters::Add("Atheros AR5007EG Wireless Network Adapter", {}));
    EXPECT_TRUE(seeding::SetKey(std::string(Notebook::kInstallationFolder) + "ORVLCfg.ini", "OrvlDevMgr",
                                "TimeoutMS", "900"));
}

// The first user's own power settings, which applying a scheme takes over.
void Scene::SeedUsersPolicy() const
{
    const std::string hive = "HKEY_USERS\\" + Accounts::Find(Notebook::kFirstUser)->sid;
    const std::string power = hive + "\\Control Panel\\PowerCfg";
    EXPECT_TRUE(RegistryEditor::WriteText(power, "CurrentPowerPolicy", "4"));

    EditPolicies<USER_POWER_POLICY>(power + "\\PowerPolicies\\4",
                                    [](USER_POWER_POLICY& policy)
                                    {
                                        policy.SpindownTimeoutAc = 1200;
                                        policy.SpindownTimeoutDc = 600;
                                        policy.IdleAc.Action = PowerActionSleep;
                                        policy.IdleTimeoutAc = 1800;
                                        policy.IdleDc.Action = PowerActionHibernate;
                                        policy.IdleTimeoutDc = 900;
                                    });
    EditPolicies<MACHINE_POWER_POLICY>("HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\"
                                       "Controls Folder\\PowerCfg\\PowerPolicies\\4",
                                       [](MACHINE_POWER_POLICY& policy)
                                       {
                                           policy.DozeS4TimeoutAc = 5400;
                                           policy.DozeS4TimeoutDc = 2400;
                                       });
    EditPolicies<GLOBAL_USER_POWER_POLICY>(power + "\\GlobalPowerPolicy",
                                           [](GLOBAL_USER_POWER_POLICY& policy)
                                           {
                                               policy.LidCloseAc.Action = PowerActionHibernate;
                                               policy.PowerButtonDc.Action = PowerActionShutdown;
                                           });
}

// Schemes 6 and 7 of the first user and 8 of the second, which is the active one.
void Scene::SeedSchemes()
{
    struct Owned
    {
        const char* user;
        const char* identity;
    };
    constexpr Owned kOwned[] = {
        {Notebook::kFirstUser, "name=Travel desc=\"On the road\""},
        {Notebook::kFirstUser, "name=Evening desc=\"At home\""},
        {Notebook::kSecondUser, "name=Travel desc=\"Another one's\""},
    };
    int number = kFirstOwnScheme;
    for (const Owned& scheme : kOwned)
    {
        const std::string values = std::string(kValues[number - kFirstOwnScheme]);
        m_host->user = scheme.user;
        if (m_major == 5)
        {
            Expect("ADD_SCHEME_ALL", std::string(scheme.identity) + " scheme=1 " + values);
        }
        else
        {
            // Schemes come from elsewhere here: the system has them and the rows of the file name them.
            GUID guid = OwnScheme(number);
            GUID* copy = &guid;
            EXPECT_EQ(0U, PowerDuplicateScheme(nullptr, &kBalanced, &copy));
            EXPECT_TRUE(seeding::SetKey(ProfileFile("PowerSchemes.ini"), "Scheme " + std::to_string(number),
                                        "GUID", OwnSchemeText(number)));
            Expect("EDIT_SCHEME_ALL", "scheme=" + std::to_string(number) + ' ' + values);
        }
        ++number;
    }
    if (m_major == 5)
    {
        Expect("APPLY_SCHEME", "scheme=8");
        return;
    }
    EXPECT_TRUE(seeding::SetKey(ProfileFile("PowerSchemes.ini"), "Schemes", "SchemeMaxIndex", "9"));
    const GUID active = OwnScheme(8);
    EXPECT_EQ(0U, PowerSetActiveScheme(nullptr, &active));
}

RequestOutcome Scene::Run(const Sample& sample)
{
    Restore();
    if (sample.isNewUser)
    {
        m_host->Unload();
        EXPECT_TRUE(m_host->Load());
    }
    return Send(sample);
}

RequestOutcome Scene::Send(const Sample& sample)
{
    const std::vector<std::byte> payload = PayloadOf(sample.command, sample.fields);
    Trace::Clear();
    DebugOutput::Clear();
    SetLastError(ERROR_SUCCESS); // log lines quote it, also where no call has failed
    RequestOutcome outcome;
    outcome.answer = m_host->Send(sample.command, payload);
    outcome.calls = Counts();
    outcome.events = m_host->TakeEvents();
    outcome.serviceRequests = m_service->TakeRequests();
    outcome.pluginLog = seeding::LogLines(kLogs[0]);
    outcome.engineLog = seeding::LogLines(kLogs[1]);
    outcome.debugger = DebuggerLines();
    RemoveLogs();
    return outcome;
}

void Scene::Restore()
{
    EXPECT_TRUE(m_snapshot->Restore());
}

std::vector<std::string> Scene::Changes() const
{
    return m_snapshot->HasChanged() ? Differences(m_state, Observe()) : std::vector<std::string>();
}
