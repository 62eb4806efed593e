// tests/advapi32/RegistryFilesTest.cpp
//
// The registry's files in the notebook's folder, and two processes on them.

#include "support/ChildProcess.h"
#include "support/NotebookTest.h"

#include "base/WholeFile.h"
#include "control/RegistryEditor.h"
#include "machine/Machine.h"
#include "modules/advapi32/ValueText.h"

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
        {{REG_BINARY, ""}, "hex:"},
        {{REG_SZ, std::string("a\0\0\0\0\0", 6)}, "hex(1):61,00,00,00,00,00"},
    };
    for (const auto& [value, text] : rows)
    {
        ASSERT_TRUE(RegistryEditor::Write(kKey, "v\"\\=]", value));
        EXPECT_EQ("\"v\\\"\\\\=]\"=" + text + '\n', Lines());
        ASSERT_TRUE(WriteWhole(File(), *ReadWhole(File()))); // so that it is read again
        const std::optional<Value> read = RegistryEditor::Read(kKey, "V\"\\=]");
        ASSERT_TRUE(read) << text;
        EXPECT_TRUE(value.type == read->type && value.bytes == read->bytes) << text;
    }
}

TEST_F(RegistryFilesTest, AFileWrittenByATextEditor)
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

constexpr int kRounds = 300;

bool WriteAllRounds(const char* name)
{
    bool done = true;
    for (int round = 1; round <= kRounds; ++round)
    {
        done = RegistryEditor::WriteText(kKey, name, std::to_string(round)) && done;
    }
    return done;
}

TEST_F(RegistryFilesTest, TwoProcessesWriteOneKey)
{
    ChildProcess first([] { return WriteAllRounds("0"); });
    ChildProcess second([] { return WriteAllRounds("1"); });
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    EXPECT_EQ(std::to_string(kRounds), RegistryEditor::ReadText(kKey, "0"));
    EXPECT_EQ(std::to_string(kRounds), RegistryEditor::ReadText(kKey, "1"));
}

} // namespace
