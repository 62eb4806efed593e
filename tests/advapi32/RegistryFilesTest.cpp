// tests/advapi32/RegistryFilesTest.cpp
//
// The registry as a person finds it in the notebook's folder, and under several processes, some of which die.

#include "support/NotebookTest.h"

#include "advapi32/ValueText.h"
#include "notebook/Machine.h"
#include "notebook/RegistryEditor.h"
#include "notebook/WholeFile.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <sys/wait.h>
#include <unistd.h>

using namespace simulated;
using registry::Value;

namespace
{

constexpr const char* kKey = "HKLM\\SOFTWARE\\Kelvo\\ORVA";

class RegistryFilesTest : public NotebookTest
{
protected:
    static std::string FileOf(const std::string& value)
    {
        return Machine::PathOf("registry/HKEY_LOCAL_MACHINE/SOFTWARE/Kelvo/ORVA/") + '=' + value;
    }
};

TEST_F(RegistryFilesTest, EachValueHasAReadableFormThatGivesItBack)
{
    const struct
    {
        Value value;
        std::string text;
    } rows[] = {
        {registry::NumberValue(42), "dword:0000002a"},
        {registry::TextValue("C:\\Cfg\\", REG_SZ), "sz:C:\\Cfg\\"},
        {registry::TextValue("", REG_SZ), "sz:"},
        {registry::TextValue("a\nb\xC3\xA4", REG_EXPAND_SZ), "expand_sz:a\nb\xC3\xA4"},
        {{REG_BINARY, std::string("\x00\xFF\x0A", 3)}, "hex:00,ff,0a"},
        {{REG_BINARY, ""}, "hex:"},
        {{REG_SZ, std::string("a\0", 2)}, "hex(1):61,00"},
        {{REG_SZ, std::string("a\0\0\0\0\0", 6)}, "hex(1):61,00,00,00,00,00"},
        {{REG_SZ, "abc"}, "hex(1):61,62,63"},
        {{REG_DWORD, "\x01"}, "hex(4):01"},
        {{0x12345, ""}, "hex(12345):"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.text);
        ASSERT_TRUE(RegistryEditor::Write(kKey, "v", row.value));
        EXPECT_EQ(row.text + '\n', ReadWhole(FileOf("v")));
        const std::optional<Value> read = RegistryEditor::Read(kKey, "v");
        ASSERT_TRUE(read);
        EXPECT_EQ(row.value.type, read->type);
        EXPECT_EQ(row.value.bytes, read->bytes);
    }
}

TEST_F(RegistryFilesTest, AFileThatSaysNothingIsNoValue)
{
    for (const char* const text : {"", "word:1", "dword:", "dword:1x", "dword:123456789", "hex:100", "hex:zz",
                                   "hex(:00", "hex(x):00", "hex(1)00"})
    {
        ASSERT_TRUE(WriteWhole(FileOf("v"), text));
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, &key));
        EXPECT_EQ(ERROR_BADDB, RegQueryValueExW(key, L"v", nullptr, nullptr, nullptr, nullptr)) << text;
        EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
    }
}

// A key that is deleted while others work below it goes whole; what a killed process left over is in nobody's
// way.
TEST_F(RegistryFilesTest, LeftoversAreNoPartOfTheRegistry)
{
    const std::filesystem::path folder = Machine::PathOf("registry/HKEY_LOCAL_MACHINE/SOFTWARE/Kelvo");
    std::filesystem::create_directories(folder / ".~deleted.new/x");
    std::ofstream(folder / "ORVA/.~=v.new") << "sz:torn";
    EXPECT_EQ((std::vector<std::string>{"ORVA", "ORVL"}), RegistryEditor::Keys("HKLM\\SOFTWARE\\Kelvo"));
    EXPECT_TRUE(RegistryEditor::Values(kKey).empty());
    EXPECT_TRUE(RegistryEditor::WriteNumber(kKey, "v", 1));
    EXPECT_TRUE(RegistryEditor::RemoveKey(kKey));
    EXPECT_FALSE(std::filesystem::exists(folder / ".~deleted.new"));
}

constexpr unsigned kRounds = 1000;

// The text names its writer and round twice, so that a torn one shows.
std::string Text(unsigned writer, unsigned round)
{
    const std::string half = std::to_string(writer) + ':' + std::to_string(round);
    return half + '|' + std::string(round % 7 * 100, '.') + '|' + half;
}

bool IsWhole(const std::string& text)
{
    const std::size_t half = text.find('|');
    return half != std::string::npos && text.ends_with('|' + text.substr(0, half));
}

[[noreturn]] void WriteAllRounds(unsigned writer)
{
    bool done = true;
    for (unsigned round = 1; round <= kRounds; ++round)
    {
        done = RegistryEditor::WriteText(kKey, "Shared", Text(writer, round)) &&
               RegistryEditor::WriteNumber(kKey, "Own" + std::to_string(writer), round) && done;
    }
    _exit(done ? 0 : 1);
}

TEST_F(RegistryFilesTest, TwoProcessesWriteOneKey)
{
    std::vector<pid_t> writers;
    for (unsigned writer = 0; writer < 2; ++writer)
    {
        writers.push_back(fork());
        if (writers.back() == 0)
        {
            WriteAllRounds(writer);
        }
    }
    for (const pid_t writer : writers)
    {
        int status = 1;
        while (waitpid(writer, &status, WNOHANG) == 0)
        {
            const std::optional<std::string> text = RegistryEditor::ReadText(kKey, "Shared");
            EXPECT_TRUE(!text || IsWhole(*text)) << *text;
        }
        EXPECT_EQ(0, status);
    }
    EXPECT_EQ(kRounds, RegistryEditor::ReadNumber(kKey, "Own0"));
    EXPECT_EQ(kRounds, RegistryEditor::ReadNumber(kKey, "Own1"));
    const std::string last = *RegistryEditor::ReadText(kKey, "Shared");
    EXPECT_TRUE(last == Text(0, kRounds) || last == Text(1, kRounds)) << last;
}

// Whatever a killed writer was doing: the value is an old or a new one, and the next writer isn't held up.
TEST_F(RegistryFilesTest, AWriterIsKilled)
{
    for (unsigned attempt = 0; attempt < 20; ++attempt)
    {
        const pid_t writer = fork();
        if (writer == 0)
        {
            WriteAllRounds(attempt);
        }
        usleep(500 + attempt * 700);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
        const std::optional<std::string> text = RegistryEditor::ReadText(kKey, "Shared");
        EXPECT_TRUE(!text || IsWhole(*text)) << *text;
        EXPECT_TRUE(RegistryEditor::WriteText(kKey, "Shared", Text(99, attempt)));
    }
}

} // namespace
