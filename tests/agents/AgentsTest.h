// agents/AgentsTest.h
//
// What the tests of the agents share: the driver's requests as text, the log, the system's version, and the
// files of an installation.
#pragma once

#include "support/NotebookTest.h"

#include "notebook/Trace.h"

#include <gmock/gmock.h>

#include <windows.h>

#include <functional>
#include <span>
#include <string>
#include <vector>

class AgentsTest : public NotebookTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    static void UseVersion(unsigned major);

    /// The inputs of the driver's requests since the last `ForgetDriver`, each as "47 52 44 49 ...".
    static std::vector<std::string> DriverInputs();
    static void ForgetDriver();

    /// "47 52 44 49" for these bytes.
    static std::string Hex(std::span<const BYTE> bytes);

    /// How often the plug-in called a platform function since the trace was cleared.
    static std::size_t Calls(const std::string& function);

    /// How often one of the driver's I/O controls was called since then, or called with success.
    static std::size_t DriverCalls(DWORD code, bool onlySuccessful);

    /// The lines that the classes logged since the last call, without their final newlines.
    static std::vector<std::string> NewLogLines();

    /// Writes a file of the installation anew.
    static void WriteInstalled(const std::string& file, const std::string& content);

    /// Makes one network adapter, with this description, the machine's only device.
    static void UseOneAdapter(const std::string& description);
    static constexpr const char* kAdapter = "PCI\\VEN_10EC&DEV_8168\\1";

    /// Runs `work` again and again, with the first, the second, ... observed call of `function` failing,
    /// until none is left to fail. `check` is run after each, told how often it was.
    static void WithEachFailure(const std::string& function, DWORD error, const std::function<void()>& work,
                                const std::function<void(unsigned)>& check);
};

/// Wide text for messages and comparisons.
std::string Narrow(const wchar_t* wide);
