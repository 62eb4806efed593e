// tests/notebook/ToolTest.cpp
//
// The tool, as a process of its own: what it changes is seen from here, what it prints is for people.

#include "support/NotebookTest.h"

#include "notebook/Accounts.h"
#include "notebook/EmbeddedController.h"
#include "notebook/KernelDriver.h"
#include "notebook/Machine.h"
#include "notebook/PowerSource.h"
#include "notebook/RegistryEditor.h"

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

TEST_F(ToolTest, MakesANotebookAndShowsIt)
{
    Tool("create --version 6.0 --code-page 65001");
    EXPECT_EQ("6", Machine::Read("Machine", "Major"));
    EXPECT_EQ(65001U, GetACP());
    const std::string shown = Tool("show");
    for (const char* const part : {"Windows        6.0.6002", "alice", "mains in", "Realtek", "backlight 5"})
    {
        EXPECT_NE(std::string::npos, shown.find(part)) << part << '\n' << shown;
    }
}

TEST_F(ToolTest, TellsOfAnAppliedScheme)
{
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, L"ApplySchemeEvent");
    Tool("applied 4");
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(event, 0));
    EXPECT_EQ(4U, RegistryEditor::ReadNumber("HKLM\\Software\\Kelvo\\ORVA", "CurrentPwrSchemeID"));
    EXPECT_TRUE(CloseHandle(event));
    EXPECT_EQ("stored; nobody waits for the event\n", Tool("applied 5"));
}

TEST_F(ToolTest, ChangesUsersAndTheSystem)
{
    Tool("user add dave");
    Tool("user logon dave");
    Tool("user logoff alice");
    EXPECT_TRUE(Accounts::Find("dave")->isLoggedOn);
    EXPECT_FALSE(Accounts::Find("alice")->isLoggedOn);
    EXPECT_NE(std::string::npos, Tool("user list").find("dave"));
    Tool("version 10");
    EXPECT_EQ("10", Machine::Read("Machine", "Major"));
    Tool("module PowrProf.dll absent");
    EXPECT_EQ("absent", Machine::Read("Modules", "PowrProf.dll"));
}

TEST_F(ToolTest, ShowsAndChangesTheRegistry)
{
    const std::string key = "'HKCU\\Software\\A'";
    Tool("registry set " + key + " Text some words");
    Tool("registry set " + key + " Number dword:2a");
    EXPECT_EQ("some words", RegistryEditor::ReadText("HKEY_CURRENT_USER\\Software\\A", "Text"));
    EXPECT_EQ(42U, RegistryEditor::ReadNumber("HKCU\\Software\\A", "Number"));
    EXPECT_EQ("Number = dword:0000002a\nText = \"some words\"\n", Tool("registry list " + key));
    EXPECT_EQ("dword:0000002a\n", Tool("registry get " + key + " number"));
    Tool("registry delete " + key + " Number");
    Tool("registry get " + key + " Number", 1);
    Tool("registry delete " + key);
    EXPECT_FALSE(RegistryEditor::HasKey("HKCU\\Software\\A"));
    Tool("--account alice registry set " + key + " '' mine");
    EXPECT_EQ("mine", RegistryEditor::ReadText("HKU\\" + Accounts::Find("alice")->sid + "\\Software\\A", ""));
}

TEST_F(ToolTest, ChangesTheHardware)
{
    Tool("mains out");
    Tool("charge 37");
    EXPECT_EQ(0, PowerSource::Get().status.ACLineStatus);
    EXPECT_EQ(37, PowerSource::Get().status.BatteryLifePercent);
    Tool("battery out");
    EXPECT_EQ(BATTERY_FLAG_NO_BATTERY, PowerSource::Get().status.BatteryFlag);
    Tool("driver absent");
    EXPECT_FALSE(KernelDriver::IsPresent());
    Tool("ec wifi 0");
    Tool("ec 3g absent");
    EXPECT_EQ(0U, EmbeddedController::Item(EmbeddedController::kWifi));
    EXPECT_FALSE(EmbeddedController::Item(EmbeddedController::k3G));
}

TEST_F(ToolTest, SaysWhatItCannotDo)
{
    for (const char* const misuse :
         {"", "fly", "create --version x", "version", "user", "user add", "applied", "charge 101", "mains",
          "ec wifi", "registry get HKLM", "--nonsense"})
    {
        EXPECT_FALSE(Tool(misuse, 2).empty()) << misuse;
    }
    for (const char* const refused :
         {"create --version 7.7", "user logon nobody", "registry list 'HKXX\\a'",
          "registry list 'HKLM\\None'", "battery out 7", "codepage 1", "create --install /nowhere"})
    {
        EXPECT_FALSE(Tool(refused, 1).empty()) << refused;
    }
    EXPECT_NE(std::string::npos, Tool("show").find("Windows")) << "the notebook is lost";
    EXPECT_NE(std::string::npos, Tool("show --notebook /nowhere", 1).find("no notebook"));
}

TEST_F(ToolTest, SparesAFolderThatHoldsSomethingElse)
{
    const std::string file = Folder() + "/letter.txt";
    std::ofstream(file) << "dear";
    EXPECT_FALSE(Tool("create", 1).empty());
    EXPECT_TRUE(std::filesystem::exists(file));
}

} // namespace
