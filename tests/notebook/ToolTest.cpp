// tests/notebook/ToolTest.cpp
//
// The tool, as a process of its own: what it changes is seen from here. What it shows, how it makes a
// notebook and tells of an applied scheme is in tests/sessions.

#include "support/NotebookTest.h"

#include "control/PowerSource.h"
#include "control/RegistryEditor.h"
#include "machine/Accounts.h"
#include "machine/EmbeddedController.h"
#include "machine/Machine.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sys/wait.h>

using namespace simulated;

namespace
{

class ToolTest : public NotebookTest
{
protected:
    /// Runs the tool on this test's notebook; what it printed, errors included.
    std::string Tool(const std::string& arguments, int expectedCode = 0)
    {
        const std::string command =
            std::string(NOTEBOOK_TOOL) + " --notebook " + Folder() + ' ' + arguments + " 2>&1";
        std::string printed;
        std::array<char, 256> part{};
        FILE* const tool = popen(command.c_str(), "r");
        while (std::fgets(part.data(), part.size(), tool) != nullptr)
        {
            printed += part.data();
        }
        EXPECT_EQ(expectedCode, WEXITSTATUS(pclose(tool))) << arguments << '\n' << printed;
        return printed;
    }
};

TEST_F(ToolTest, ChangesTheMachine)
{
    const std::pair<const char*, bool (*)()> rows[] = {
        {"--account alice registry set 'HKCU\\Software\\A' '' mine",
         [] {
             return RegistryEditor::ReadText("HKU\\" + Accounts::Find("alice")->sid + "\\Software\\A", "") ==
                    "mine";
         }},
        {"user add dave", [] { return !Accounts::Find("dave")->isLoggedOn; }},
        {"user logon dave", [] { return Accounts::Find("dave")->isLoggedOn; }},
        {"user logoff alice", [] { return !Accounts::Find("alice")->isLoggedOn; }},
        {"user remove dave", [] { return !Accounts::Find("dave"); }},
        {"version 10", [] { return Machine::Read("Machine", "Major") == "10"; }},
        {"module PowrProf.dll absent", [] { return Machine::Read("Modules", "PowrProf.dll") == "absent"; }},
        {"codepage 65001", [] { return Machine::Read("Machine", "AnsiCodePage") == "65001"; }},
        {"charge 37", [] { return PowerSource::Get().status.BatteryLifePercent == 37; }},
        {"battery out", [] { return PowerSource::Get().status.BatteryFlag == BATTERY_FLAG_NO_BATTERY; }},
        {"ec wifi 0", [] { return EmbeddedController::Item(EmbeddedController::kWifi) == 0U; }},
        {"ec 3g absent", [] { return !EmbeddedController::Item(EmbeddedController::k3G); }},
    };
    for (const auto& [command, isDone] : rows)
    {
        Tool(command);
        EXPECT_TRUE(isDone()) << command;
    }
}

TEST_F(ToolTest, ShowsAndChangesTheRegistry)
{
    const std::string key = "'HKCU\\Software\\A'";
    Tool("registry set " + key + " Text some words");
    Tool("registry set " + key + " Number dword:2a");
    EXPECT_EQ(42U, RegistryEditor::ReadNumber("HKCU\\Software\\A", "Number"));
    EXPECT_EQ("Number = dword:0000002a\nText = \"some words\"\n", Tool("registry list " + key));
    Tool("registry delete " + key + " Number");
    Tool("registry get " + key + " Number", 1);
    Tool("registry delete " + key);
    EXPECT_FALSE(RegistryEditor::HasKey("HKCU\\Software\\A"));
}

TEST_F(ToolTest, SaysWhatItCannotDo)
{
    for (const char* const misuse :
         {"", "fly", "create --version x", "version", "user", "user add", "applied", "charge 101", "mains",
          "ec wifi", "registry get HKLM", "--nonsense"})
    {
        EXPECT_FALSE(Tool(misuse, 2).empty()) << misuse;
    }
    for (const char* const refused : {"create --version 7.7", "user logon nobody", "registry list 'HKXX\\a'",
                                      "registry list 'HKLM\\None'", "battery out 7", "codepage 1",
                                      "create --install /nowhere", "show --notebook /nowhere"})
    {
        EXPECT_FALSE(Tool(refused, 1).empty()) << refused;
    }
    EXPECT_NE(std::string::npos, Tool("show").find("Windows")) << "the notebook is lost";
    const std::string file = Folder() + "/letter.txt";
    std::ofstream(file) << "dear";
    EXPECT_FALSE(Tool("create", 1).empty());
    EXPECT_TRUE(std::filesystem::exists(file)) << "the folder held something else";
}

} // namespace
