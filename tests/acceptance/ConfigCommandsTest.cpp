// tests/acceptance/ConfigCommandsTest.cpp
//
// The commands on one key of a configuration file.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "plugin/WireRecords.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace
{

constexpr LONG kInstallation = 0;
constexpr LONG kProfile = 1;
constexpr const char* kCommands[] = {"GET_INT_FROM_CONFIG", "GET_STR_FROM_CONFIG", "PUT_INT_INTO_CONFIG",
                                     "PUT_STR_INTO_CONFIG"};
constexpr const char* kContent = "[S]\r\nNumber=42\r\nText= some text \r\n;K=1\r\n";

// On Wine the write that makes an empty file succeeds and makes none.
bool MakesEmptyFiles()
{
    const std::string probe = seeding::LocalAppData() + "\\probe.ini";
    WritePrivateProfileStringW(L"", nullptr, nullptr, seeding::Wide(probe).data());
    const bool made = seeding::Exists(probe);
    seeding::Remove(probe);
    return made;
}

class ConfigCommands : public AcceptanceTest
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(seeding::WriteBytes(InstallationFile("a.ini"), kContent));
        seeding::Remove(ProfileFile("p.ini"));
        host.Uninitialize(); // its thread writes to the log too
    }
    void TearDown() override
    {
        seeding::Remove(InstallationFile("a.ini"));
        seeding::Remove(ProfileFile("p.ini"));
    }

    // The outcome of a command on a key, whatever the bytes of its names.
    std::string On(const char* command, LONG type, const std::string& file, const std::string& section,
                   const std::string& item, const std::string& text = "")
    {
        PM_Config_Data data{};
        data.fileType = type;
        data.defaultValue = -7;
        const auto put = [](char(&field)[256], const std::string& bytes)
        { std::memcpy(field, bytes.data(), std::min(bytes.size(), sizeof field)); };
        put(data.file, file);
        put(data.section, section);
        put(data.item, item);
        put(data.stringValue, text);
        return InWords(host, command, host.Send(command, Payload(data)));
    }

    Host host;
};

TEST_F(ConfigCommands, WhatWasPutIsReadBackOfEitherFile)
{
    for (const auto& [type, name, file] : {std::tuple(kInstallation, "a.ini", InstallationFile("a.ini")),
                                           {kProfile, "p.ini", ProfileFile("p.ini")}})
    {
        const std::string key = "type=" + std::to_string(type) + " file=" + name + " section=New~ item=Key~ ";
        EXPECT_EQ("0 answer=-5", Ask(host, "GET_INT_FROM_CONFIG", key + "default=-5"));
        EXPECT_EQ("0 \"\"", Ask(host, "GET_STR_FROM_CONFIG", key));
        for (const std::string number : {"0", "2147483647", "-2147483648"})
        {
            EXPECT_EQ("0", Ask(host, "PUT_INT_INTO_CONFIG", key + "value=" + number));
            EXPECT_EQ("0 answer=" + number, Ask(host, "GET_INT_FROM_CONFIG", key));
        }
        EXPECT_EQ("-2147483648", seeding::GetKey(file, "New~", "Key~"));
        EXPECT_EQ("0", On("PUT_STR_INTO_CONFIG", type, name, "New~", "Key~", "J\xF6rg~"));
        EXPECT_EQ("0 \"J\xF6rg~\"", Ask(host, "GET_STR_FROM_CONFIG", key));
        EXPECT_EQ("J\u00F6rg~", seeding::GetKey(file, "New~", "Key~"));
        // A text that fills its field is cut, and no later field is a part of it.
        EXPECT_EQ("0", On("PUT_STR_INTO_CONFIG", type, name, "New~", "Key~", std::string(256, 'v')));
        EXPECT_EQ(std::string(255, 'v'), seeding::GetKey(file, "New~", "Key~"));
        EXPECT_EQ("0 \"" + std::string(255, 'v') + '"', Ask(host, "GET_STR_FROM_CONFIG", key));
    }
}

TEST_F(ConfigCommands, OnlyAProfileFileIsMadeOnDemand)
{
    for (const char* const command : kCommands)
    {
        const std::string name = std::string(command) + ".ini";
        EXPECT_EQ("6", On(command, kInstallation, name, "S", "K"));
        EXPECT_FALSE(seeding::Exists(InstallationFile(name))) << command;
        EXPECT_EQ('0', On(command, kProfile, name, "S", "K")[0]) << command;
        const bool isWritten = command[0] == 'P';
        EXPECT_EQ(isWritten || MakesEmptyFiles(), seeding::Exists(ProfileFile(name))) << command;
        EXPECT_TRUE(isWritten || seeding::ReadBytes(ProfileFile(name)).value_or("").empty()) << command;
        seeding::Remove(ProfileFile(name));
    }
}

TEST_F(ConfigCommands, OtherKindsOfFileFailWithTheEntryLineAlone)
{
    seeding::SwitchLogsOn();
    std::vector<std::string> lines;
    for (const LONG type : {LONG{2}, LONG{-1}})
    {
        for (const char* const command : kCommands)
        {
            EXPECT_EQ("6", On(command, type, "a.ini", "S", "Number")) << command;
            lines.insert(lines.end(), {"File=a.ini, Sec=S, Item=Number, val=0 ", ""});
        }
    }
    EXPECT_EQ(lines, seeding::LogLines("trxpm.log"));
    EXPECT_EQ(kContent, seeding::ReadBytes(InstallationFile("a.ini")));
}

// The commands give access by file name: no path, and no device.
TEST_F(ConfigCommands, NamesThatAreNoFilesAreRefused)
{
    seeding::SwitchLogsOn();
    for (const std::string& folder : {InstallationFile(""), ProfileFile("")})
    {
        EXPECT_TRUE(seeding::WriteBytes(folder + "sub\\x", kContent));
        EXPECT_TRUE(seeding::WriteBytes(folder + "..\\x", kContent));
    }
    for (const std::string file :
         {"",         "..\\x", "sub\\x",  "sub/x",   "C:x",         "..",     "a..ini",
          "a.ini\r",  "CON",   "prn.ini", "Aux.",    "NUL .x",      "nul .",  "COM1",
          "com9.ini", "lpt1 ", "LPT9",    "LPT\xB9", "COM\xB2.ini", "com\xB3"})
    {
        for (const char* const command : kCommands)
        {
            EXPECT_EQ("6", On(command, kProfile, file, "S", "K")) << command << ' ' << file;
            EXPECT_EQ("", seeding::LogLines("trxpm.log").back());
            EXPECT_EQ("6", On(command, kInstallation, file, "S\n", "=K")) << command << ' ' << file;
            EXPECT_TRUE(seeding::LogLines("trxpm.log").back().ends_with("failed.")) << command << ' ' << file;
        }
    }
    for (const std::string file :
         {"CO", "CON1", "COM", "COM0.ini", "LPT10", "NULL", "a.con", " NUL", "C0N", "COM\xB4"})
    {
        EXPECT_EQ("0", On("PUT_INT_INTO_CONFIG", kProfile, file, "S", "K")) << file;
        seeding::Remove(ProfileFile(file));
    }
    for (const std::string& folder : {InstallationFile(""), ProfileFile("")})
    {
        EXPECT_EQ(kContent, seeding::ReadBytes(folder + "sub\\x"));
        seeding::Remove(folder + "sub\\x");
        seeding::Remove(folder + "..\\x");
    }
}

TEST_F(ConfigCommands, WhatNoFileHoldsIsAbsentAndIsntStored)
{
    for (const auto& [type, name] : {std::pair(kInstallation, "a.ini"), {kProfile, "p.ini"}})
    {
        for (const auto& [section, item] : {std::pair("S\nX=1", "K"),
                                            {"S\r", "K"},
                                            {"S", "K\n[T]"},
                                            {"S", "[T]"},
                                            {"S", ";K"},
                                            {"S", " \t[T]"},
                                            {"S", " ;K"},
                                            {"S", "Number=42"}})
        {
            EXPECT_EQ("6", On("PUT_INT_INTO_CONFIG", type, name, section, item)) << section << ' ' << item;
            EXPECT_EQ("6", On("PUT_STR_INTO_CONFIG", type, name, section, item)) << section << ' ' << item;
            EXPECT_FALSE(seeding::Exists(ProfileFile("p.ini"))) << section << ' ' << item;
            EXPECT_EQ("0 answer=-7", On("GET_INT_FROM_CONFIG", type, name, section, item)) << item;
            EXPECT_EQ("0 \"\"", On("GET_STR_FROM_CONFIG", type, name, section, item)) << item;
            seeding::Remove(ProfileFile("p.ini"));
        }
        EXPECT_EQ("6", On("PUT_STR_INTO_CONFIG", type, name, "S", "Number", "1\r\nOther=2"));
        // A field that isn't read doesn't count.
        EXPECT_EQ("0 answer=" + std::string(type == kInstallation ? "42" : "-7"),
                  On("GET_INT_FROM_CONFIG", type, name, "S", "Number", "1\r\nOther=2"));
    }
    EXPECT_EQ(kContent, seeding::ReadBytes(InstallationFile("a.ini")));
}

} // namespace
