// tests/advapi32/RegistryFilesTest.cpp
//
// The registry as a person finds it in the notebook's folder, and under several processes, some of which die.

#include "support/ChildProcess.h"
#include "support/NotebookTest.h"

#include "advapi32/ValueText.h"
#include "notebook/Machine.h"
#include "notebook/RegistryEditor.h"
#include "notebook/WholeFile.h"

#include <windows.h>

#include <filesystem>
#include <fstream>
#include <utility>

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
    const std::pair<Value, std::string> rows[] = {
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
    for (const auto& [value, text] : rows)
    {
        ASSERT_TRUE(RegistryEditor::Write(kKey, "v", value));
        EXPECT_EQ(text + '\n', ReadWhole(FileOf("v")));
        const std::optional<Value> read = RegistryEditor::Read(kKey, "v");
        ASSERT_TRUE(read) << text;
        EXPECT_TRUE(value.type == read->type && value.bytes == read->bytes) << text;
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

bool WriteAllRounds(unsigned writer)
{
    bool done = true;
    for (unsigned round = 1; round <= kRounds; ++round)
    {
        done = RegistryEditor::WriteText(kKey, "Shared", Text(writer, round)) &&
               RegistryEditor::WriteNumber(kKey, "Own" + std::to_string(writer), round) && done;
    }
    return done;
}

TEST_F(RegistryFilesTest, TwoProcessesWriteOneKey)
{
    ChildProcess first([] { return WriteAllRounds(0); });
    ChildProcess second([] { return WriteAllRounds(1); });
    for (unsigned round = 0; round < kRounds; ++round)
    {
        const std::optional<std::string> text = RegistryEditor::ReadText(kKey, "Shared");
        ASSERT_TRUE(!text || IsWhole(*text)) << *text;
    }
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
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
        ChildProcess writer([attempt] { return WriteAllRounds(attempt); });
        usleep(500 + attempt * 700);
        writer.Kill();
        const std::optional<std::string> text = RegistryEditor::ReadText(kKey, "Shared");
        EXPECT_TRUE(!text || IsWhole(*text)) << *text;
        EXPECT_TRUE(RegistryEditor::WriteText(kKey, "Shared", Text(99, attempt)));
    }
}

} // namespace
