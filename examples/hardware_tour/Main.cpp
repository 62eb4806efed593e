// hardware_tour/Main.cpp
//
// A tour of the exported classes: a chipset function is disabled and enabled again, the processor is
// taken through its levels, the graphics features are set, and a device is disabled and enabled, directly and
// through the service. Everything is put back. One source for Windows and for the simulated notebook.
//
//   hardware_tour [chipset function] [device description]

#include "Printing.h"

#include "agents/CpuAgent.h"
#include "agents/DevMgr.h"
#include "agents/DspxAgent.h"
#include "agents/HwSBX.h"

#include <cfgmgr32.h>

#include <cstdio>
#include <cstdlib>

namespace
{

constexpr int kTextCapacity = 260;

// Prints the state of a chipset function. True when it could be read.
bool PrintFunction(CHwSBX& chipset, const wchar_t* name)
{
    int disabled = 0;
    if (const LONG read = chipset.GetFunctionDisable(name, &disabled); read < 0)
    {
        return Report("read " + Narrow(name), read);
    }
    std::printf("  %s is %s\n", Narrow(name).c_str(), disabled != 0 ? "disabled" : "enabled");
    return true;
}

bool TourChipset(const wchar_t* name)
{
    std::printf("Chipset function\n");
    CHwSBX chipset;
    return Report("recognise the chipset", chipset.Setup(1)) && PrintFunction(chipset, name) &&
           Report("disable " + Narrow(name), chipset.FunctionDisable(name, 1)) &&
           PrintFunction(chipset, name) &&
           Report("enable " + Narrow(name), chipset.FunctionDisable(name, 0)) && PrintFunction(chipset, name);
}

bool TourProcessor()
{
    std::printf("Processor\n");
    CCpuAgent processor;
    if (processor.Initialize() == 0)
    {
        std::printf("  the processor's range can't be read\n");
        return false;
    }
    const int first = processor.GetEblLevel();
    std::printf("  runs at %d%%\n", first);
    for (const int level : {25, 50, 75, 100, first})
    {
        const int reached = processor.SetEblLevel(level);
        std::printf("  asked for %3d%%, reached %3d%%, runs at %3d%%\n", level, reached,
                    processor.GetEblLevel());
        if (reached < 0)
        {
            return false;
        }
    }
    return true;
}

bool TourGraphics()
{
    std::printf("Graphics\n");
    // FRQG on, the second field of ABR on, LUMS at level 5.
    constexpr int kWord = 0x64000005;
    CDspxAgent graphics;
    if (!Report("open the power interface", graphics.Setup()))
    {
        return false;
    }
    const int first = graphics.GetEblLevel();
    for (const int word : {kWord, first})
    {
        if (graphics.SetEblLevel(word) == -1)
        {
            return false;
        }
        std::printf("  set 0x%08X, reads 0x%08X\n", static_cast<unsigned>(word),
                    static_cast<unsigned>(graphics.GetEblLevel()));
    }
    return first != -1 && graphics.GetEblLevel() == first;
}

// Prints the managed devices. Returns the number of the first one that runs, can be disabled, and has the
// wanted description, if any; -1 when there is none.
LONG ListDevices(CDevMgr& devices, const wchar_t* wanted)
{
    LONG chosen = -1;
    for (LONG index = 0; index < devices.GetDeviceCount(); ++index)
    {
        wchar_t description[kTextCapacity] = {};
        ULONG status = 0;
        ULONG problem = 0;
        if (devices.GetDesc(static_cast<ULONG>(index), description, sizeof description) < 0 ||
            devices.GetDeviceStatus(static_cast<ULONG>(index), &status, &problem) < 0)
        {
            std::printf("  %2d  can't be read\n", static_cast<int>(index));
            continue;
        }
        const bool isRunning = (status & DN_STARTED) != 0;
        std::printf("  %2d  %-44s %s\n", static_cast<int>(index), Narrow(description).c_str(),
                    isRunning ? "running" : "stopped");
        const bool isWanted = wanted == nullptr || Narrow(description) == Narrow(wanted);
        if (chosen < 0 && isWanted && isRunning && (status & DN_DISABLEABLE) != 0)
        {
            chosen = index;
        }
    }
    return chosen;
}

bool TourDevices(const wchar_t* wanted)
{
    std::printf("Devices\n");
    CDevMgr devices;
    if (!Report("gather the devices", devices.Setup()))
    {
        return false;
    }
    const LONG chosen = ListDevices(devices, wanted);
    wchar_t id[kTextCapacity] = {};
    if (chosen < 0 || devices.GetInstID(static_cast<ULONG>(chosen), id, kTextCapacity) < 0)
    {
        std::printf("  no device to disable\n");
        return false;
    }
    const std::string name = "device " + std::to_string(chosen);
    const bool direct =
        Report("disable " + name + " directly", CDevMgr::ExecStateChange(id, OrvlDeviceDisable)) &&
        Report("enable " + name + " directly", CDevMgr::ExecStateChange(id, OrvlDeviceEnable));
    const bool remote =
        Report("disable " + name + " through the service",
               devices.DoStateChangeRemote(id, OrvlDeviceDisable)) &&
        Report("enable " + name + " through the service", devices.DoStateChangeRemote(id, OrvlDeviceEnable));
    return direct && remote;
}

} // namespace

int main(int argc, char** argv)
{
    wchar_t function[kTextCapacity] = L"HD Audio";
    wchar_t device[kTextCapacity] = {};
    if ((argc > 1 && !Widen(argv[1], function, kTextCapacity)) ||
        (argc > 2 && !Widen(argv[2], device, kTextCapacity)))
    {
        std::printf("usage: hardware_tour [chipset function] [device description]\n");
        return EXIT_FAILURE;
    }
    const bool steps[] = {TourChipset(function), TourProcessor(), TourGraphics(),
                          TourDevices(argc > 2 ? device : nullptr)};
    for (const bool step : steps)
    {
        if (!step)
        {
            return EXIT_FAILURE;
        }
    }
    return EXIT_SUCCESS;
}
