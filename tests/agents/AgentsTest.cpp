// agents/AgentsTest.cpp
//
// Seeds the notebook and reads it back.

#include "agents/AgentsTest.h"

#include "machine/Chipset.h"
#include "machine/DeviceTree.h"
#include "machine/EmbeddedController.h"
#include "machine/Graphics.h"
#include "machine/KernelDriver.h"
#include "machine/Processor.h"

#include <devguid.h>

#include <cstdio>

using namespace simulated;

void AgentsTest::SetUp()
{
    NotebookTest::SetUp();
    seeding::SwitchLogsOn();
    for (DWORD item = EmbeddedController::kBacklight; item <= EmbeddedController::kBluetooth; ++item)
    {
        EmbeddedController::SetItem(item, item - 0xBE);
    }
    for (const auto& [method, answer] : {std::pair{"GWRI", 7U}, {"GDBG", 8U}, {"_STA", 9U}})
    {
        EmbeddedController::SetMethod(method, answer);
    }
    Processor::Fit(4, {6, 12, 10, 21});
    Graphics::SetInstalled(true);
    Graphics::SetCapabilities(0xA5);
    PhysicalMemory::AddRange(0xFED1C000, 0x4000);
    IoPorts::Set(0x1080, 4, 0xA1B2C3D4);
    NewDriverInputs();
}

std::vector<std::string> AgentsTest::NewDriverInputs()
{
    std::vector<std::string> inputs;
    for (const KernelDriver::Request& request : KernelDriver::Requests())
    {
        std::string& input = inputs.emplace_back();
        for (const BYTE byte : request.input)
        {
            char digits[4];
            std::snprintf(digits, sizeof digits, input.empty() ? "%02X" : " %02X", byte);
            input += digits;
        }
    }
    KernelDriver::ForgetRequests();
    return inputs;
}

std::size_t AgentsTest::Calls(const std::string& function)
{
    return Trace::CallsOf(function).size();
}

std::vector<std::string> AgentsTest::NewLogLines()
{
    std::vector<std::string> lines = seeding::LogLines("orvl.log");
    seeding::Remove("C:\\temp1234567890\\orvl.log");
    return lines;
}

void AgentsTest::WriteInstalled(const std::string& file, const std::string& content)
{
    ASSERT_TRUE(seeding::WriteBytes(Notebook::kInstallationFolder + file, content));
}

void AgentsTest::UseOneAdapter(const std::string& description)
{
    for (const std::string& device : DeviceTree::All())
    {
        DeviceTree::Remove(device);
    }
    DeviceTree::Add({kAdapter, GUID_DEVCLASS_NET, description});
}
