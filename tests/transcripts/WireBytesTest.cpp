// tests/transcripts/WireBytesTest.cpp
//
// The seven records of the wire, byte for byte beside the values of their fields. Nothing here comes from the
// headers of the plug-in or the host: a field that changes its place on both sides is noticed.

#include "acceptance/RequestWords.h"
#include "transcripts/Scene.h"

#include <gtest/gtest.h>

#include <sstream>

namespace
{

// Bytes in hexadecimal; "25*00" stands for 25 of them.
std::vector<std::byte> Bytes(const std::string& text)
{
    std::vector<std::byte> bytes;
    std::istringstream words(text);
    for (std::string word; words >> word;)
    {
        const std::size_t star = word.find('*');
        const std::size_t count = star == std::string::npos ? 1 : std::stoul(word);
        const std::string digits = star == std::string::npos ? word : word.substr(star + 1);
        for (std::size_t position = 0; position < digits.size() * count; position += 2)
        {
            bytes.push_back(std::byte(std::stoul(digits.substr(position % digits.size(), 2), nullptr, 16)));
        }
    }
    return bytes;
}

struct Row
{
    const char* record;
    const char* command;
    const char* fields;
    const char* bytes;
};

constexpr Row kPayloads[] = {
    {"PM_Config_Data", "PUT_INT_INTO_CONFIG",
     "type=1 file=a.ini section=Part item=Key string=\"b c\" default=-2 value=0x01020304",
     "01000000 612e696e69 251*00 50617274 252*00 4b6579 253*00 622063 253*00 feffffff 04030201"},
    {"PM_Variable_Data", "EDIT_SCHEME", "scheme=7 ac=1 name=Wifi value=-5",
     "07000000 01000000 57696669 28*00 fbffffff"},
    {"PM_Power_Scheme_Data", "ADD_SCHEME", "name=Night desc=\"As dark\" scheme=0x0a0b",
     "4e69676874 27*00 4173206461726b 505*00 0b0a0000 4*00"},
    {"PM_Power_Scheme_Data_ALL", "EDIT_SCHEME_ALL",
     "name=Night desc=\"As dark\" scheme=0x0a0b ac.cpuSpeed=1 ac.backlightLevel=2 ac.lanSpeed=3 ac.lums=4 "
     "ac.monitorOffTimeOut=5 ac.standbyTimeOut=6 ac.wifi=7 ac.lanStatus=8 ac.threeG=9 dc.cpuSpeed=10 "
     "dc.backlightLevel=11 dc.lanSpeed=12 dc.lums=13 dc.monitorOffTimeOut=14 dc.standbyTimeOut=15 dc.wifi=16 "
     "dc.lanStatus=17 dc.threeG=18 IfDefault=19 IconNum=20 IfShow=21",
     "4e69676874 27*00 4173206461726b 505*00 0b0a0000 01000000 02000000 03000000 04000000 05000000 06000000 "
     "07000000 08000000 09000000 0a000000 0b000000 0c000000 0d000000 0e000000 0f000000 10000000 11000000 "
     "12000000 13000000 14000000 15000000"},
    {"PM_AutoRun_Data", "AUTORUN_ORVA", "flag=1 path=C:\\a.exe", "01000000 433a5c612e657865 252*00"},
};

// The scene's replies on the index-based power manager.
constexpr Row kReplies[] = {
    {"PM_Power_Scheme_Data", "GET_SCHEME_NAME", "scheme=7",
     "4576656e696e67 25*00 417420686f6d65 505*00 8*00"},
    {"PM_Power_Scheme_Data_ALL", "QUERY_SCHEME_ALL", "scheme=7",
     "544*00 07000000 4b000000 06000000 04000000 03000000 dc050000 8c0a0000 01000000 00000000 01000000 "
     "64000000 04000000 03000000 03000000 b4000000 b0040000 00000000 01000000 00000000 03000000 09000000 "
     "04000000"},
    {"PM_Battery_Info", "GET_BATTERY_INFO", "battery=0",
     "02000000 32000000 18150000 c8be0000 faa00000 000000 4c494f4e 00 78560000 34120000 bc9a0000"},
    {"PM_Power_Info", "GET_POWER_INFO", "", "02000000 32000000 18150000"},
};

TEST(WireBytes, OfPayloads)
{
    for (const Row& row : kPayloads)
    {
        EXPECT_EQ(Bytes(row.bytes), PayloadOf(row.command, row.fields)) << row.record;
    }
}

TEST(WireBytes, OfReplies)
{
    Scene scene(5);
    for (const Row& row : kReplies)
    {
        const RequestOutcome outcome = scene.Run({row.command, row.fields, "", false});
        EXPECT_EQ(Bytes(row.bytes), outcome.answer.reply) << row.record;
    }
}

} // namespace
