// tests/plugin/SchemeConversionTest.cpp
//
// The texts of a whole scheme that comes in. Its numbers are pinned by the bytes of the wire and the
// transcripts.

#include "plugin/SchemeConversion.h"
#include "acceptance/Seeding.h"
#include "support/NotebookTest.h"

#include <cstring>

namespace
{

using SchemeConversion = NotebookTest;

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
        ASSERT_TRUE(simulated::Notebook::SetCodePage(row.codePage));
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
