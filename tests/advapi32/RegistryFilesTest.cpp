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

#include <algorithm>
#include <utility>

using namespace simulated;
using registry::Value;

namespace
{

constexpr const char* kKey = "HKLM\\SOFTWARE\\Kelvo\\ORVA";

class RegistryFilesTest : public NotebookTest
{
protected:
    static std::string File()
    {
        return Machine::PathOf("registry/HKEY_LOCAL_MACHINE.reg");
    }

    /// What the file holds of the key's values.
    static std::string Lines()
    {
        const std::string text = ReadWhole(File()).value_or("");
        const std::string header = "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kelvo\\ORVA]\n";
        const std::size_t begin = std::min(text.find(header), text.size() - header.size()) + header.size();
        return text.substr(begin, text.find("\n[", begin) - begin);
    }
};

TEST_F(RegistryFilesTest, EachValueHasAReadableFormThatGivesItBack)
{
    const std::string bytes(26, 'A');
    std::string shown = "hex:41";
    for (std::size_t index = 1; index < bytes.size(); ++index)
    {
        shown += index == 25 ? ",\\\n  41" : ",41";
    }
    const std::pair<Value, std::string> rows[] = {
        {registry::NumberValue(42), "dword:0000002a"},
        {registry::TextValue("C:\\\"Cfg\"\\", REG_SZ), R"("C:\\\"Cfg\"\\")"},
        {registry::TextValue("", REG_SZ), R"("")"},
        {registry::TextValue("a\nb\xC3\xA4=\"[x]\n@=", REG_SZ), "\"a\nb\xC3\xA4=\\\"[x]\n@=\""},
        {registry::TextValue("a", REG_EXPAND_SZ), "hex(2):61,00,00,00"},
        {{REG_BINARY, bytes}, shown},
        {{REG_BINARY, std::string("\x00\xFF\x0A", 3)}, "hex:00,ff,0a"},
        {{REG_BINARY, ""}, "hex:"},
        {{REG_SZ, std::string("a\0", 2)}, "hex(1):61,00"},
        {{REG_SZ, std::string("a\0\0\0\0\0", 6)}, "hex(1):61,00,00,00,00,00"},
        {{REG_SZ, std::string("\0\xD8\0\0", 4)}, "hex(1):00,d8,00,00"},
        {{REG_SZ, "abc"}, "hex(1):61,62,63"},
        {{REG_DWORD, "\x01"}, "hex(4):01"},
        {{0x12345, ""}, "hex(12345):"},
    };
    for (const auto& [value, text] : rows)
    {
        ASSERT_TRUE(RegistryEditor::Write(kKey, "v\"\\=]", value));
        EXPECT_EQ("\"v\\\"\\\\=]\"=" + text + '\n', Lines());
        ASSERT_TRUE(WriteWhole(File(), *ReadWhole(File()))); // which is read anew
        const std::optional<Value> read = RegistryEditor::Read(kKey, "V\"\\=]");
        ASSERT_TRUE(read) << text;
        EXPECT_TRUE(value.type == read->type && value.bytes == read->bytes) << text;
    }
}

TEST_F(RegistryFilesTest, AFileThatAnEditorOfTextsHasWritten)
{
    ASSERT_TRUE(WriteWhole(File(),
                           "REGEDIT4\r\n\r\n; a remark\r\n[HKEY_LOCAL_MACHINE\\A\\b]\r\n@=\"x\"\r\n"
                           "\"v\"=hex:01,\\\r\n  02\r\n\"v2\"\r\nnonsense\r\n\r\n[HKEY_LOCAL_MACHINE\\a]\r\n"
                           "\"n\"=dword:7\r\n[HKEY_LOCAL_MACHINE\\A\\B]\r\n\"V\"=hex:03"));
    EXPECT_EQ((std::vector<std::string>{"A"}), RegistryEditor::Keys("HKLM"));
    EXPECT_EQ((std::vector<std::string>{"b"}), RegistryEditor::Keys("HKLM\\A"));
    EXPECT_EQ(7U, RegistryEditor::ReadNumber("HKLM\\A", "n"));
    EXPECT_EQ("x", RegistryEditor::ReadText("HKLM\\A\\b", ""));
    EXPECT_EQ((std::vector<std::string>{"", "v"}), RegistryEditor::Values("HKLM\\A\\b"));
    EXPECT_EQ("\x03", RegistryEditor::Read("HKLM\\A\\b", "v").value_or(Value{}).bytes);
}

// It spoils nothing else, and stays as it is.
TEST_F(RegistryFilesTest, AFormThatSaysNothingIsNoValue)
{
    for (const char* const form : {"", "word:1", "dword:", "dword:1x", "dword:123456789", "hex:100", "hex:zz",
                                   "hex(:00", "hex(x):00", "hex(1)00", "\"x\"y"})
    {
        ASSERT_TRUE(RegistryEditor::WriteForm(kKey, "v", form));
        ASSERT_TRUE(RegistryEditor::WriteNumber(kKey, "w", 1));
        HKEY key = nullptr;
        ASSERT_EQ(ERROR_SUCCESS,
                  RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, &key));
        EXPECT_EQ(ERROR_BADDB, RegQueryValueExW(key, L"v", nullptr, nullptr, nullptr, nullptr)) << form;
        EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
        EXPECT_EQ("\"v\"=" + std::string(form) + "\n\"w\"=dword:00000001\n", Lines());
    }
}

TEST_F(RegistryFilesTest, AKeyThatIsMadeAgainElsewhereIsAnotherOne)
{
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Kelvo\\ORVA", 0, KEY_READ, &key));
    const auto elsewhere = [](auto work) { return ChildProcess(work).Await(); };
    EXPECT_EQ(0, elsewhere([] { return RegistryEditor::WriteNumber(kKey, "v", 1); }));
    EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(key, L"v", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, elsewhere([] { return RegistryEditor::RemoveKey(kKey); }));
    EXPECT_EQ(ERROR_KEY_DELETED, RegQueryValueExW(key, L"v", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(0, elsewhere([] { return RegistryEditor::WriteNumber(kKey, "v", 1); }));
    EXPECT_EQ(ERROR_KEY_DELETED, RegQueryValueExW(key, L"v", nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegCloseKey(key));
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
