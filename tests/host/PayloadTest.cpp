// tests/host/PayloadTest.cpp
//
// How words become a payload. Which bytes the fields of each record are is in WireBytesTest.

#include "Payload.h"
#include "CommandCatalogue.h"

#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

namespace
{

std::int32_t NumberAt(const host::Payload& payload, std::size_t offset)
{
    std::int32_t number = 0;
    std::memcpy(&number, payload.bytes.data() + offset, sizeof number);
    return number;
}

const char* TextAt(const host::Payload& payload, std::size_t offset)
{
    return reinterpret_cast<const char*>(payload.bytes.data()) + offset;
}

host::Payload Build(const host::RecordShape& shape, std::vector<std::string> words)
{
    return host::BuildPayload(shape, words);
}

} // namespace

TEST(PayloadTest, BareWordsFillTheFieldsInOrder)
{
    const auto variable = Build(host::kVariableData, {"name=Wifi", "3", "battery", "42"});
    ASSERT_EQ("", variable.error);
    EXPECT_EQ(3, NumberAt(variable, 0));
    EXPECT_EQ(0, NumberAt(variable, 4));
    EXPECT_STREQ("Wifi", TextAt(variable, 8));
    EXPECT_EQ(42, NumberAt(variable, 40));
}

// A whole-scheme edit of one field must not change the others: what isn't named is a value that no option
// list holds.
TEST(PayloadTest, WholeSchemeLeavesUnnamedVariablesAlone)
{
    const auto scheme = Build(host::kWholeScheme, {"scheme=4", "dc.wifi=off"});
    ASSERT_EQ("", scheme.error);
    ASSERT_EQ(632u, scheme.bytes.size());
    EXPECT_EQ(4, NumberAt(scheme, 544));
    EXPECT_EQ(-1, NumberAt(scheme, 548));
    EXPECT_EQ(0, NumberAt(scheme, 608));
    EXPECT_EQ(0, NumberAt(scheme, 620));
}

TEST(PayloadTest, WrongWordsAreRefusedWithAReason)
{
    const std::tuple<const host::RecordShape&, std::string, const char*> rows[] = {
        {host::kSchemeNumber, "shceme=1", "the fields are: scheme"},
        {host::kVariableData, "name=" + std::string(32, 'x'), "takes 31 bytes"},
    };
    for (const auto& [shape, word, reason] : rows)
    {
        EXPECT_NE(std::string::npos, Build(shape, {word}).error.find(reason)) << reason;
    }
}
