// tests/agents/OperationsTest.cpp
//
// What each agent returns and logs on a fully equipped notebook, and how that changes when any one
// platform call fails. The golden files show the results and, for each effect, the calls that have it;
// what isn't listed changes nothing. What a failure leaves open shows as "held".

#include "agents/AgentsTest.h"

#include "agents/BatAgent.h"
#include "agents/CpuAgent.h"
#include "agents/DevMgr.h"
#include "agents/DisplayAgent.h"
#include "agents/DspxAgent.h"
#include "agents/EblTuner.h"
#include "agents/EcAgent.h"
#include "agents/HwSBX.h"
#include "agents/LanAgent.h"
#include "base/ListBox.h"
#include "control/Adapters.h"
#include "control/Batteries.h"
#include "control/Snapshot.h"
#include "foundation/OrvlProfile.h"
#include "machine/Chipset.h"
#include "machine/Machine.h"
#include "machine/Processor.h"
#include "transcripts/Golden.h"

#include <concepts>
#include <cstdint>
#include <sstream>

using namespace simulated;

namespace
{

// The steps of one run.
class StepLog
{
public:
    // The results by reference: the first one's call fills in the others.
    template <class... Answers>
    void operator()(const std::string& call, const Answers&... answers)
    {
        std::string step = call;
        ((step += ' ' + Show(answers)), ...);
        for (const std::string& input : AgentsTest::NewDriverInputs())
        {
            step += showsInputs ? "\n  < " + input : "";
        }
        for (const std::string& line : AgentsTest::NewLogLines())
        {
            // An empty line belongs to the one before, whose format ends in a line end of its own.
            step += line.empty() ? "\\n" : "\n  " + line;
        }
        m_steps.push_back(step);
        SetLastError(ERROR_SUCCESS); // log lines quote it, also where no call has failed
    }

    std::string Text() const
    {
        std::string text;
        for (const std::string& step : m_steps)
        {
            text += step + '\n';
        }
        return text;
    }

    // The first step that isn't as in `good`, with the last line that is new in its log, and how many others
    // aren't. Empty for no difference.
    std::string Effect(const StepLog& good) const
    {
        std::string effect;
        int others = -1;
        for (std::size_t index = 0; index < m_steps.size(); ++index)
        {
            const std::string wanted = index < good.m_steps.size() ? good.m_steps[index] : "";
            if (m_steps[index] != wanted && others++ < 0)
            {
                std::istringstream lines(m_steps[index]);
                std::getline(lines, effect);
                std::string news;
                for (std::string line; std::getline(lines, line);)
                {
                    news = wanted.find(line) == wanted.npos ? " |" + line.substr(1) : news;
                }
                effect += news;
            }
        }
        return others > 0 ? effect + " ... " + std::to_string(others) : effect;
    }

    bool showsInputs = false; ///< what went to the driver

private:
    template <std::integral Number>
    static std::string Show(Number answer)
    {
        const auto number = static_cast<std::int64_t>(answer);
        std::ostringstream text;
        const bool isHex = number < -1 || number > 0xFFFFF;
        text << (isHex ? "0x" : "") << (isHex ? std::hex : std::dec) << std::uppercase
             << (number < -1 ? number & 0xFFFFFFFF : number);
        return text.str();
    }
    static std::string Show(const wchar_t* text)
    {
        return '"' + seeding::Utf8(text) + '"';
    }

    std::vector<std::string> m_steps;
};

void UseBatteries(StepLog& run)
{
    BATTERY_INFORMATION info = {};
    BATTERY_STATUS status = {};
    BATTERY_MANUFACTURE_DATE date = {};
    ULONG temperature = 0;
    wchar_t text[16] = {};
    CBatAgent agent;
    run("Setup", agent.Setup());
    run("GetBatteryCount", agent.GetBatteryCount());
    run("GetInfo", agent.GetInfo(0, info), info.FullChargedCapacity);
    run("GetStatus", agent.GetStatus(0, status), status.Capacity, status.Voltage);
    run("GetTemperature", agent.GetTemperature(0, temperature), temperature);
    run("GetManufactureDate", agent.GetManufactureDate(0, date), date.Day, date.Month, date.Year);
    run("GetManufactureName", agent.GetManufactureName(0, text, sizeof text), text);
    run("GetUniqueID", agent.GetUniqueID(0, text, sizeof text), text);
    run("GetSerialNumber", agent.GetSerialNumber(0, text, sizeof text), text);
    run("GetStatus(1)", agent.GetStatus(1, status), status.Capacity);
    run("Cleanup", agent.Cleanup());
}

void UseDevices(StepLog& run)
{
    wchar_t id[64] = {};
    ULONG status = 0;
    ULONG problem = 0;
    CDevMgr devices;
    run("Setup", devices.Setup());
    run("GetDeviceCount", devices.GetDeviceCount());
    run("GetDesc", devices.GetDesc(0, id, sizeof id), id);
    run("GetInstID", devices.GetInstID(0, id, 64), id);
    run("ChangeState(0,disable)", devices.ChangeState(0, OrvlDeviceDisable));
    run("GetDeviceStatus", devices.GetDeviceStatus(0, &status, &problem), status, problem);
    run("ExecStateChange2(enable)", devices.ExecStateChange2(L"Realtek Wireless", OrvlDeviceEnable));
    run("GetDeviceStatus", devices.GetDeviceStatus(0, &status, &problem), status, problem);
    run("Cleanup", devices.Cleanup());
    run("(cursor)", Cursor::Shown());
}

void UseAdapter(StepLog& run)
{
    CLanAgent adapter;
    run("Initialize", adapter.Initialize());
    run("SetLanSpeed(3)", adapter.SetLanSpeed(3));
    run("GetLanSpeed", adapter.GetLanSpeed());
    run("ApplySettings", adapter.ApplySettings());
    run("SetLANConnectStatus(0)", adapter.SetLANConnectStatus(0));
    run("GetLANConnectStatus", adapter.GetLANConnectStatus());
    run("GetWLANConnectStatus", adapter.GetWLANConnectStatus());
    run("SetWLANConnectStatus(1)", adapter.SetWLANConnectStatus(1));
    run("GetLANConnectStatus", adapter.GetLANConnectStatus());
    run("GetWLANConnectStatus", adapter.GetWLANConnectStatus());
}

void UseProcessor(StepLog& run)
{
    CCpuAgent processor;
    run("SetEblLevel(40)", processor.SetEblLevel(40));
    run("Initialize", processor.Initialize());
    run("SetEblLevel(40)", processor.SetEblLevel(40));
    run("GetEblLevel", processor.GetEblLevel());
}

void UseGraphics(StepLog& run)
{
    CDspxAgent graphics;
    run("SetEblLevel", graphics.SetEblLevel(0));
    run("Setup", graphics.Setup());
    run("CheckSupportStatus", graphics.CheckSupportStatus());
    run("SetEblLevel", graphics.SetEblLevel(0x74000003));
    run("GetEblLevel", graphics.GetEblLevel());
    run("Cleanup", graphics.Cleanup());
}

void UseHardware(StepLog& run)
{
    unsigned __int64 value = 0x0102030405060708;
    DWORD data = 0x1111;
    wchar_t name[51] = {};
    void* mapping = nullptr;
    run.showsInputs = true;
    CHwXA hardware;
    run("ReadIoPort", hardware.ReadIoPort(0x1080, &data, 2));
    run("Setup", hardware.Setup());
    run("Setup", hardware.Setup());
    run("WriteMSR", hardware.WriteMSR(Processor::kPerformanceControl, &value));
    run("ReadMSR", hardware.ReadMSR(Processor::kPerformanceControl, &value), value);
    run("ReadIoPort", hardware.ReadIoPort(0x1080, &data, 2), data);
    run("WriteIoPort", hardware.WriteIoPort(0x1080, &data, 2));
    run("GetDeviceName", hardware.GetDeviceName(0, 31, 0, name, 51), name);
    run("ReadPCIConfig", hardware.ReadPCIConfig(L"\\Device\\NTPNP_PCI0005", 0, &data, 4), data);
    run("WritePCIConfig", hardware.WritePCIConfig(L"\\Device\\NTPNP_PCI0005", 0x80, &data, 4));
    run("MapMemorySpace",
        hardware.MapMemorySpace(reinterpret_cast<void*>(ULONG_PTR{0xFED1C010}), 4, &mapping));
    run.showsInputs = false; // they hold the mapping's address
    run("WriteMemory", hardware.WriteMemory(mapping, &data, 4));
    run("ReadMemory", hardware.ReadMemory(mapping, &data, 4), data);
    run("UnmapMemorySpace", hardware.UnmapMemorySpace(mapping));
}

void UseChipset(StepLog& run)
{
    int disabled = 5;
    CHwSBX chipset;
    run("Setup", chipset.Setup(1));
    run("FunctionDisable(InPci)", chipset.FunctionDisable(L"InPci", 1));
    run("FunctionDisable(InMemory)", chipset.FunctionDisable(L"InMemory", 1));
    run("FunctionDisable(InPorts)", chipset.FunctionDisable(L"InPorts", 1));
    run("GetFunctionDisable(InMemory)", chipset.GetFunctionDisable(L"InMemory", &disabled), disabled);
    std::array<BYTE, 2> inPci = {};
    PciBus::Read({0, 31, 0}, 0x80, inPci);
    run("(registers)", inPci[0], PhysicalMemory::Word(0xFED1F418), IoPorts::Read(0x1080, 2).value_or(0));
}

// What all classes have in common, and the tuners without a function.
void UseTuners(StepLog& run)
{
    CEblTuner any;
    CDisplayAgent display;
    CLanAgent adapter;
    run("GetVersion", CBatAgent().GetVersion(), CCpuAgent().GetVersion(), CDevMgr().GetVersion(),
        display.GetVersion(), CDspxAgent().GetVersion(), any.GetVersion(), CEcAgent().GetVersion(),
        CHwSBX().GetVersion(), CHwXA().GetVersion(), adapter.GetVersion(), CORVLCfg().GetVersion(),
        CORVLProfile().GetVersion());
    run("GetEblLevel", any.GetEblLevel(), adapter.GetEblLevel(), display.GetEblLevel());
    run("SetEblLevel", any.SetEblLevel(5), adapter.SetEblLevel(5), display.SetEblLevel(5));
    run("CheckSupportStatus", any.CheckSupportStatus(), adapter.CheckSupportStatus(),
        display.CheckSupportStatus());
}

class Operations : public AgentsTest
{
protected:
    void SetUp() override
    {
        AgentsTest::SetUp();
        Batteries::Add();
        Batteries::SetValue(0, "FullChargedCapacity", "43210");
        Batteries::SetValue(0, "Temperature", "2999");
        Batteries::SetValue(0, "ManufactureDate", "2008-03-17");
        Batteries::SetValue(0, "ManufactureName", "Maker");
        Batteries::SetValue(0, "UniqueID", "U-1");
        Batteries::SetValue(0, "SerialNumber", "S-1");
        Batteries::SetStatus(0, BATTERY_STATUS{5, 30000, 11100, -900});
        Batteries::RefuseOpening(1, ERROR_ACCESS_DENIED);
        Adapters::Clear();
        EXPECT_NE("", Adapters::Add("Realtek Wireless", {{"DuplexMode", "1"}}));
        WriteInstalled("ORVLCfg.ini", "[OrvlDevMgr]\nDmOptions=0\n[DevGUIDs]\nNum=1\n"
                                      "GUID0={4D36E972-E325-11CE-BFC1-08002BE10318}\n");
        const std::string bridge = "Bus=0\nDevice=31\nFunction=0\n";
        const std::string bit = bridge + "ValueSize=2\nBit=5\nDisableType=0\n";
        const std::string base = "AddressSize=4\nAddressMask=0xFFFFC000\nAddressOffset=";
        WriteInstalled("SBXCfg.ini",
                       "[Device Identifications]\nSBXIdNumbers=1\n[SBX Identification 0]\n"
                       "RegisterType=PCIConfig\nOffset=0\nValueSize=4\nValue=0x27B98086\nName=Hub\n" +
                           bridge +
                           "[Hub Devices]\nDeviceNumbers=3\nName0=InPci\nName1=InMemory\n"
                           "Name2=InPorts\n[InPci]\nRegisterType=PCIConfig\nValueOffset=0x80\n" +
                           bit + "[InMemory]\nRegisterType=Memory\nValueOffset=0x3418\n" + base + "0xF0\n" +
                           bit + "[InPorts]\nRegisterType=IO\nValueOffset=0x1080\n" + base + "0xF8\n" + bit);
    }

    static StepLog StepsOf(void (*use)(StepLog&))
    {
        NewLogLines();
        NewDriverInputs();
        SetLastError(ERROR_SUCCESS);
        Trace::Clear();
        StepLog run;
        use(run);
        if (const unsigned held = Leaks::Count(); held != 0)
        {
            run("held", held);
            Leaks::Forget();
        }
        return run;
    }

    static void Sweep(const char* agent, void (*use)(StepLog&))
    {
        Snapshot snapshot(Machine::Folder());
        StepsOf(use); // fills the table of device objects
        EXPECT_TRUE(snapshot.Restore());
        const StepLog good = StepsOf(use);
        const std::vector<TracedCall> calls = Trace::Calls();
        FailureRows rows;
        std::map<std::string, unsigned> ordinals;
        for (std::size_t index = 0; index < calls.size(); ++index)
        {
            const std::string& function = calls[index].function;
            const std::string name = function + ' ' + std::to_string(++ordinals[function]);
            if (IsOfLog(calls, index) || function.starts_with("GetPrivateProfile"))
            {
                continue;
            }
            SCOPED_TRACE(name);
            ASSERT_TRUE(snapshot.Restore());
            Faults::Inject("*", static_cast<unsigned>(index + 1), ERROR_GEN_FAILURE);
            rows.Add(name, StepsOf(use).Effect(good));
            EXPECT_TRUE(Faults::AllHit());
            Faults::Clear();
        }
        CompareWithGolden(std::string("agents/") + agent + ".txt", good.Text() + '\n' + rows.Text());
    }
};

// clang-format off
TEST_F(Operations, OfBatteriesHaveTheirReviewedOutcomes) { Sweep("BatAgent", UseBatteries); }
TEST_F(Operations, OfTheProcessorHaveTheirReviewedOutcomes) { Sweep("CpuAgent", UseProcessor); }
TEST_F(Operations, OfDevicesHaveTheirReviewedOutcomes) { Sweep("DevMgr", UseDevices); }
TEST_F(Operations, OfGraphicsHaveTheirReviewedOutcomes) { Sweep("DspxAgent", UseGraphics); }
TEST_F(Operations, OfTheChipsetHaveTheirReviewedOutcomes) { Sweep("HwSBX", UseChipset); }
TEST_F(Operations, OfHardwareHaveTheirReviewedOutcomes) { Sweep("HwXA", UseHardware); }
TEST_F(Operations, OfAdaptersHaveTheirReviewedOutcomes) { Sweep("LanAgent", UseAdapter); }
TEST_F(Operations, OfTunersHaveTheirReviewedOutcomes) { Sweep("Tuners", UseTuners); }
// clang-format on

} // namespace
