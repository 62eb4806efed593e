// tests/acceptance/ConfigCommandsTest.cpp
//
// The commands on one key of a configuration file.

#include "acceptance/AcceptanceTest.h"
#include "plugin/WireRecords.h"

namespace
{

constexpr LONG kInstallation = 0;
constexpr LONG kProfile = 1;
constexpr const char* kCommands[] = {"GET_INT_FROM_CONFIG", "GET_STR_FROM_CONFIG", "PUT_INT_INTO_CONFIG",
                                     "PUT_STR_INTO_CONFIG"};

constexpr const char* kContent = "[S]\r\nNumber=42\r\nText= some text \r\n;K=1\r\n";

template <std::size_t N>
void SetText(char (&field)[N], const std::string& text)
{
    std::memcpy(field, text.data(), std::min(text.size(), N));
}

PM_Config_Data Access(LONG type, const std::string& file, const std::string& section, const std::string& item)
{
    PM_Config_Data data{};
    data.fileType = type;
    SetText(data.file, file);
    SetText(data.section, section);
    SetText(data.item, item);
    return data;
}

// Wine answers success to the write that makes an empty file and makes none.
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
    }
    void TearDown() override
    {
        seeding::Remove(InstallationFile("a.ini"));
        seeding::Remove(ProfileFile("p.ini"));
    }

    std::string FileOf(LONG type, const std::string& name) const
    {
        return type == kInstallation ? InstallationFile(name) : ProfileFile(name);
    }

    Host host;
};

TEST_F(ConfigCommands, NumbersAreRead)
{
    PM_Config_Data data = Access(kInstallation, "a.ini", "S", "Number");
    data.defaultValue = -5;
    EXPECT_EQ(42, host.Send("GET_INT_FROM_CONFIG", data).Number());
    SetText(data.item, "Absent");
    EXPECT_EQ(-5, host.Send("GET_INT_FROM_CONFIG", data).Number());
}

TEST_F(ConfigCommands, TextsAreReadWithTheirTerminator)
{
    PM_Config_Data data = Access(kInstallation, "a.ini", "S", "Text");
    EXPECT_EQ("some text", host.Send("GET_STR_FROM_CONFIG", data).Text());
    SetText(data.item, "Absent");
    const Answer absent = host.Send("GET_STR_FROM_CONFIG", data);
    EXPECT_EQ(0, absent.code);
    EXPECT_EQ("", absent.Text());
}

TEST_F(ConfigCommands, WhatWasPutIsReadBackOfEitherFile)
{
    for (const LONG type : {kInstallation, kProfile})
    {
        const std::string name = type == kInstallation ? "a.ini" : "p.ini";
        PM_Config_Data data = Access(type, name, "New", "Key");
        for (const LONG number : {LONG{0}, LONG{7}, LONG{-1}, LONG{2147483647}, LONG{-2147483647 - 1}})
        {
            data.value = number;
            const Answer put = host.Send("PUT_INT_INTO_CONFIG", data);
            EXPECT_EQ(0, put.code);
            EXPECT_FALSE(put.reply.has_value());
            EXPECT_EQ(number, host.Send("GET_INT_FROM_CONFIG", data).Number());
        }
        EXPECT_EQ("-2147483648", seeding::GetKey(FileOf(type, name), "New", "Key"));
        SetText(data.stringValue, "J\xF6rg");
        EXPECT_EQ(0, host.Send("PUT_STR_INTO_CONFIG", data).code);
        EXPECT_EQ("J\xF6rg", host.Send("GET_STR_FROM_CONFIG", data).Text());
        EXPECT_EQ("J\u00F6rg", seeding::GetKey(FileOf(type, name), "New", "Key"));
    }
}

TEST_F(ConfigCommands, OnlyAProfileFileIsMadeOnDemand)
{
    for (const char* const command : kCommands)
    {
        const std::string name = std::string(command) + ".ini";
        EXPECT_EQ(6, host.Send(command, Access(kInstallation, name, "S", "K")).code) << command;
        EXPECT_FALSE(seeding::Exists(InstallationFile(name))) << command;
        EXPECT_EQ(0, host.Send(command, Access(kProfile, name, "S", "K")).code) << command;
        const bool isWritten = command[0] == 'P';
        EXPECT_EQ(isWritten || MakesEmptyFiles(), seeding::Exists(ProfileFile(name))) << command;
        seeding::Remove(ProfileFile(name));
    }
    EXPECT_EQ(0, host.Send("GET_INT_FROM_CONFIG", Access(kProfile, "p.ini", "S", "K")).code);
    EXPECT_EQ(MakesEmptyFiles() ? std::optional<std::string>("") : std::nullopt,
              seeding::ReadBytes(ProfileFile("p.ini")));
}

TEST_F(ConfigCommands, OtherKindsOfFileAndOtherLengthsFailSilently)
{
    host.Uninitialize(); // its thread writes to the log too
    seeding::SwitchLogsOn();
    for (const char* const command : kCommands)
    {
        const PM_Config_Data data = Access(kInstallation, "a.ini", "S", "K");
        const std::span<const std::byte> whole = Payload(data);
        EXPECT_EQ(6, host.Send(command, whole.first(whole.size() - 1)).code);
        std::vector<std::byte> longer(whole.begin(), whole.end());
        longer.push_back(std::byte{0});
        EXPECT_EQ(6, host.Send(command, longer).code);
    }
    EXPECT_TRUE(seeding::LogLines("trxpm.log").empty());
    for (const LONG type : {LONG{2}, LONG{-1}})
    {
        for (const char* const command : kCommands)
        {
            EXPECT_EQ(6, host.Send(command, Access(type, "a.ini", "S", "K")).code);
        }
    }
    std::vector<std::string> lines;
    for (std::size_t request = 0; request < 2 * std::size(kCommands); ++request)
    {
        lines.insert(lines.end(), {"File=a.ini, Sec=S, Item=K, val=0 ", ""});
    }
    EXPECT_EQ(lines, seeding::LogLines("trxpm.log"));
}

TEST_F(ConfigCommands, LogTellsTheWay)
{
    host.Uninitialize(); // its thread writes to the log too
    seeding::SwitchLogsOn();
    host.Send("GET_STR_FROM_CONFIG", Access(kInstallation, "missing.ini", "S", "K"));
    host.Send("GET_STR_FROM_CONFIG", Access(kInstallation, "a.ini", "S", "Text"));
    host.Send("GET_STR_FROM_CONFIG", Access(kProfile, "p.ini", "S", "Text"));
    const std::vector<std::string> kLines = {
        "File=missing.ini, Sec=S, Item=K, val=0 ",
        "",
        "Initialize public configure file missing.inifailed.",
        "File=a.ini, Sec=S, Item=Text, val=0 ",
        "",
        "File=a.ini, Sec=S, Item=Text str=some text, strlen=9",
        "",
        "File=p.ini, Sec=S, Item=Text, val=0 ",
        "",
        "File=p.ini, Sec=S, Item=Text str=, strlen=0",
        "",
        "the needed string len is 0",
    };
    EXPECT_EQ(kLines, seeding::LogLines("trxpm.log"));
}

// The commands give access by file name: no path, and no device.
TEST_F(ConfigCommands, NamesThatAreNoFilesAreRefused)
{
    host.Uninitialize(); // its thread writes to the log too
    seeding::SwitchLogsOn();
    seeding::MakeFolder(InstallationFile("sub"));
    seeding::MakeFolder(ProfileFile("sub"));
    for (const std::string file :
         {"",         "..\\x", "sub\\x",  "sub/x",   "C:x",         "..",     "a..ini",
          "a.ini\r",  "CON",   "prn.ini", "Aux.",    "NUL .x",      "nul .",  "COM1",
          "com9.ini", "lpt1 ", "LPT9",    "LPT\xB9", "COM\xB2.ini", "com\xB3"})
    {
        for (const char* const command : kCommands)
        {
            EXPECT_EQ(6, host.Send(command, Access(kProfile, file, "S", "K")).code) << command << ' ' << file;
            EXPECT_EQ("", seeding::LogLines("trxpm.log").back());
            EXPECT_EQ(6, host.Send(command, Access(kInstallation, file, "S\n", "=K")).code);
            EXPECT_TRUE(seeding::LogLines("trxpm.log").back().ends_with("failed.")) << command << ' ' << file;
        }
    }
    for (const std::string file :
         {"CON1", "COM", "COM0.ini", "LPT10", "NULL", "a.con", " NUL", "C0N", "COM\xB4"})
    {
        EXPECT_EQ(0, host.Send("PUT_INT_INTO_CONFIG", Access(kProfile, file, "S", "K")).code) << file;
        seeding::Remove(ProfileFile(file));
    }
}

TEST_F(ConfigCommands, WhatNoFileHoldsIsAbsentAndIsntStored)
{
    for (const LONG type : {kInstallation, kProfile})
    {
        const std::string name = type == kInstallation ? "a.ini" : "p.ini";
        for (const auto& [section, item] : {std::pair("S\nX=1", "K"),
                                            {"S\r", "K"},
                                            {"S", "K\n[T]"},
                                            {"S", "[T]"},
                                            {"S", ";K"},
                                            {"S", " \t[T]"},
                                            {"S", " ;K"},
                                            {"S", "Number=42"}})
        {
            PM_Config_Data data = Access(type, name, section, item);
            data.defaultValue = -7;
            for (const char* const command : {"PUT_INT_INTO_CONFIG", "PUT_STR_INTO_CONFIG"})
            {
                EXPECT_EQ(6, host.Send(command, data).code) << command << ' ' << section << ' ' << item;
                EXPECT_EQ(type == kInstallation, seeding::Exists(FileOf(type, name))) << command;
            }
            EXPECT_EQ(-7, host.Send("GET_INT_FROM_CONFIG", data).Number()) << section << ' ' << item;
            EXPECT_EQ("", host.Send("GET_STR_FROM_CONFIG", data).Text()) << section << ' ' << item;
            seeding::Remove(ProfileFile("p.ini"));
        }
        PM_Config_Data data = Access(type, name, "S", "Number");
        SetText(data.stringValue, "1\r\nOther=2");
        EXPECT_EQ(6, host.Send("PUT_STR_INTO_CONFIG", data).code);
        EXPECT_EQ(0, host.Send("GET_INT_FROM_CONFIG", data).code) << "a field that isn't read doesn't count";
    }
    EXPECT_EQ(kContent, seeding::ReadBytes(InstallationFile("a.ini")));
}

TEST_F(ConfigCommands, TextsThatDontEndInTheirFieldAreCut)
{
    PM_Config_Data data = Access(kInstallation, "a.ini", "S", "Long");
    std::memset(data.stringValue, 'v', sizeof data.stringValue);
    data.defaultValue = -1; // what stands behind the field isn't part of the text
    EXPECT_EQ(0, host.Send("PUT_STR_INTO_CONFIG", data).code);
    EXPECT_EQ(std::string(255, 'v'), seeding::GetKey(InstallationFile("a.ini"), "S", "Long"));
    EXPECT_EQ(std::string(255, 'v'), host.Send("GET_STR_FROM_CONFIG", data).Text());
}

TEST_F(ConfigCommands, NullPointersAreRefusedBeforeAnythingHappens)
{
    PM_Config_Data data = Access(kProfile, "p.ini", "S", "K");
    char reply[256];
    DWORD size = sizeof reply;
    for (const char* const command : kCommands)
    {
        const bool replies = command[0] == 'G';
        PM_Request whole{};
        std::memcpy(whole.command, command, std::strlen(command));
        whole.params = &data;
        whole.paramsLen = sizeof data;
        whole.result = reply;
        whole.resultLen = &size;

        PM_Request request = whole;
        request.params = nullptr;
        EXPECT_EQ(6, host.Send(&request)) << command;
        EXPECT_FALSE(seeding::Exists(ProfileFile("p.ini"))) << command;
        request = whole;
        request.result = nullptr;
        EXPECT_EQ(replies ? 6 : 0, host.Send(&request)) << command;
        request = whole;
        request.resultLen = nullptr;
        EXPECT_EQ(replies ? 6 : 0, host.Send(&request)) << command;
        EXPECT_EQ(!replies, seeding::Exists(ProfileFile("p.ini"))) << command;
        seeding::Remove(ProfileFile("p.ini"));
    }
}

} // namespace
