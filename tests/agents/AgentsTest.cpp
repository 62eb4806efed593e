// agents/AgentsTest.cpp
//
// The driver's requests, the log and the files of an installation, as the tests look at them.

#include "agents/AgentsTest.h"

#include "agents/OrvlDrvMgr.h"
#include "notebook/DeviceTree.h"
#include "notebook/KernelDriver.h"
#include "notebook/Machine.h"
#include "notebook/Text.h"

#include <devguid.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace simulated;

namespace
{

std::string LogFolder()
{
    return Machine::PathOf("drives/C") + "/temp1234567890";
}

} // namespace

void AgentsTest::SetUp()
{
    NotebookTest::SetUp();
    std::filesystem::create_directories(LogFolder());
    ForgetDriver();
}

void AgentsTest::TearDown()
{
    // What an earlier version of the system keeps open doesn't outlive the test.
    KernelDriver::LetGo();
    UseVersion(5);
    OrvlDrvClose();
    NotebookTest::TearDown();
}

void AgentsTest::UseVersion(unsigned major)
{
    ASSERT_TRUE(Notebook::SetVersion(major, major == 5 ? 1 : 0));
}

std::string AgentsTest::Hex(std::span<const BYTE> bytes)
{
    std::string text;
    for (const BYTE byte : bytes)
    {
        char digits[4];
        std::snprintf(digits, sizeof digits, text.empty() ? "%02X" : " %02X", byte);
        text += digits;
    }
    return text;
}

std::vector<std::string> AgentsTest::DriverInputs()
{
    std::vector<std::string> inputs;
    for (const KernelDriver::Request& request : KernelDriver::Requests())
    {
        inputs.push_back(Hex(request.input));
    }
    return inputs;
}

void AgentsTest::ForgetDriver()
{
    KernelDriver::ForgetRequests();
}

std::size_t AgentsTest::Calls(const std::string& function)
{
    return Trace::CallsOf(function).size();
}

std::vector<std::string> AgentsTest::NewLogLines()
{
    std::vector<std::string> lines;
    {
        std::ifstream file(LogFolder() + "/orvl.log");
        for (std::string line; std::getline(file, line);)
        {
            lines.push_back(line.substr(0, line.find('\r')));
        }
    }
    std::error_code ignored;
    std::filesystem::remove(LogFolder() + "/orvl.log", ignored);
    return lines;
}

void AgentsTest::WriteInstalled(const std::string& file, const std::string& content)
{
    std::ofstream(Machine::PathOf("drives/C") + "/Program Files/Kelvo/ORVL/Cfg/" + file) << content;
}

void AgentsTest::UseOneAdapter(const std::string& description)
{
    for (const std::string& device : DeviceTree::All())
    {
        DeviceTree::Remove(device);
    }
    DeviceTree::Add({kAdapter, GUID_DEVCLASS_NET, description});
}

std::string Narrow(const wchar_t* wide)
{
    return ToUtf8(wide);
}
