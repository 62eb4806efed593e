// agents/AgentsTest.cpp
//
// The driver's requests, the log and the files of an installation, as the tests look at them.

#include "agents/AgentsTest.h"

#include "notebook/DeviceTree.h"
#include "notebook/KernelDriver.h"

#include <devguid.h>

#include <cstdio>

using namespace simulated;

void AgentsTest::SetUp()
{
    NotebookTest::SetUp();
    seeding::SwitchLogsOn();
    ForgetDriver();
}

void AgentsTest::TearDown()
{
    // What an earlier version of the system keeps open doesn't outlive the test.
    KernelDriver::LetGo();
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
