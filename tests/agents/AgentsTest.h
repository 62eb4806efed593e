// agents/AgentsTest.h
//
// A notebook with everything that the agents use, and access to what they did.
#pragma once

#include "acceptance/Seeding.h"
#include "support/NotebookTest.h"

#include "base/Trace.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <string>
#include <vector>

class AgentsTest : public NotebookTest
{
public:
    /// The lines that the classes logged since the last call, without their final newlines.
    static std::vector<std::string> NewLogLines();

    /// The inputs of the driver's requests since the last call, each as "47 52 44 49 ...".
    static std::vector<std::string> NewDriverInputs();

protected:
    void SetUp() override;

    /// How often the plug-in called a platform function since the trace was cleared.
    static std::size_t Calls(const std::string& function);

    /// Writes a file of the installation anew.
    static void WriteInstalled(const std::string& file, const std::string& content);

    /// Makes one network adapter, with this description, the machine's only device.
    static void UseOneAdapter(const std::string& description);
    static constexpr const char* kAdapter = "PCI\\VEN_10EC&DEV_8168\\1";
};
