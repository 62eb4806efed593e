// tests/plugin/SchemeConversionTest.cpp
//
// The two directions of a whole scheme, by the offsets that the host knows.

#include "plugin/SchemeConversion.h"
#include "acceptance/Seeding.h"
#include "support/NotebookTest.h"

#include <array>
#include <cstring>
#include <functional>

namespace
{

constexpr std::size_t kRecordSize = 632;
using Bytes = std::array<unsigned char, kRecordSize>;

// A number of the record: where it stands on the wire, and where the engine has it.
struct Number
{
    std::size_t offset;
    std::function<LONG&(PWRSET&)> field;
};

const Number kNumbers[] = {
    {544, [](PWRSET& set) -> LONG& { return set.schemeID; }},
    {548, [](PWRSET& set) -> LONG& { return set.ac.cpuSpeed; }},
    {552, [](PWRSET& set) -> LONG& { return set.ac.backlightLevel; }},
    {556, [](PWRSET& set) -> LONG& { return set.ac.lanSpeed; }},
    {560, [](PWRSET& set) -> LONG& { return set.ac.lums; }},
    {564, [](PWRSET& set) -> LONG& { return set.ac.monitorOffTimeOut; }},
    {568, [](PWRSET& set) -> LONG& { return set.ac.standbyTimeOut; }},
    {572, [](PWRSET& set) -> LONG& { return set.ac.wifi; }},
    {576, [](PWRSET& set) -> LONG& { return set.ac.lanStatus; }},
    {580, [](PWRSET& set) -> LONG& { return set.ac.threeG; }},
    {584, [](PWRSET& set) -> LONG& { return set.dc.cpuSpeed; }},
    {588, [](PWRSET& set) -> LONG& { return set.dc.backlightLevel; }},
    {592, [](PWRSET& set) -> LONG& { return set.dc.lanSpeed; }},
    {596, [](PWRSET& set) -> LONG& { return set.dc.lums; }},
    {600, [](PWRSET& set) -> LONG& { return set.dc.monitorOffTimeOut; }},
    {604, [](PWRSET& set) -> LONG& { return set.dc.standbyTimeOut; }},
    {608, [](PWRSET& set) -> LONG& { return set.dc.wifi; }},
    {612, [](PWRSET& set) -> LONG& { return set.dc.lanStatus; }},
    {616, [](PWRSET& set) -> LONG& { return set.dc.threeG; }},
    {620, [](PWRSET& set) -> LONG& { return set.IfDefault; }},
    {624, [](PWRSET& set) -> LONG& { return set.IconNum; }},
    {628, [](PWRSET& set) -> LONG& { return set.IfShow; }},
};

// A value that tells its offset in each of its bytes, and is negative for every other field.
LONG ValueAt(std::size_t offset)
{
    const auto low = static_cast<ULONG>(offset);
    return static_cast<LONG>(low | (low << 16) | (offset % 8 == 0 ? 0x80000000u : 0u));
}

void PutLittleEndian(Bytes& bytes, std::size_t offset, LONG value)
{
    for (std::size_t place = 0; place < 4; ++place)
    {
        bytes[offset + place] = static_cast<unsigned char>(static_cast<ULONG>(value) >> (8 * place));
    }
}

PM_Power_Scheme_Data_ALL RecordOf(const Bytes& bytes)
{
    PM_Power_Scheme_Data_ALL record;
    static_assert(sizeof record == kRecordSize);
    std::memcpy(&record, bytes.data(), sizeof record);
    return record;
}

class SchemeConversion : public NotebookTest
{
};

TEST_F(SchemeConversion, NumbersComeFromTheirOffsets)
{
    Bytes bytes{};
    for (const Number& number : kNumbers)
    {
        PutLittleEndian(bytes, number.offset, ValueAt(number.offset));
    }
    PWRSET set{};
    ConvertPwrSchemeData(RecordOf(bytes), set);
    for (const Number& number : kNumbers)
    {
        EXPECT_EQ(ValueAt(number.offset), number.field(set)) << number.offset;
    }
}

TEST_F(SchemeConversion, NumbersGoToTheirOffsetsAndTextsStayBehind)
{
    PWRSET set{};
    Bytes expected{};
    for (const Number& number : kNumbers)
    {
        number.field(set) = ValueAt(number.offset);
        PutLittleEndian(expected, number.offset, ValueAt(number.offset));
    }
    PutLittleEndian(expected, 596, ValueAt(560)); // one LUMS level for both sources
    set.name[0] = L'n';
    set.desc[0] = L'd';
    PM_Power_Scheme_Data_ALL record;
    std::memset(&record, 0xEE, sizeof record);
    ConvertPwrSet(set, record);
    EXPECT_EQ(0, std::memcmp(expected.data(), &record, sizeof record));
}

TEST_F(SchemeConversion, TextsEndAtTheirTerminatorOrAfter255Bytes)
{
    struct Case
    {
        unsigned codePage;
        std::string name;
        std::string description;
        std::string wideName;
        std::string wideDescription;
    };
    const Case kCases[] = {
        {1252, "", "", "", ""},
        {1252, std::string(31, 'n'), "d", std::string(31, 'n'), "d"},
        {1252, std::string(32, 'n'), "tail", std::string(32, 'n') + "tail", "tail"},
        {1252, std::string(32, 'n'), std::string(512, 'd'), std::string(32, 'n') + std::string(223, 'd'),
         std::string(255, 'd')},
        {1252, "J\xF6rg", "\x80", "J\u00F6rg", "\u20AC"},
        {65001, "J\xC3\xB6rg", "\xE2\x82\xAC", "J\u00F6rg", "\u20AC"},
    };
    for (const Case& row : kCases)
    {
        simulated::Notebook::SetCodePage(row.codePage);
        PM_Power_Scheme_Data_ALL record{};
        std::memcpy(record.name, row.name.data(), row.name.size());
        std::memcpy(record.desc, row.description.data(), row.description.size());
        record.schemeID = -1; // no terminator behind a description that fills its field
        PWRSET set{};
        ConvertPwrSchemeData(record, set);
        EXPECT_EQ(row.wideName, seeding::Utf8(set.name));
        EXPECT_EQ(row.wideDescription, seeding::Utf8(set.desc));
    }
}

} // namespace
