// tests/acceptance/CodePageTest.cpp
//
// Texts of requests are in the ANSI code page of the machine, which may have several bytes to a character.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "control/Notebook.h"

using simulated::Notebook;

namespace
{

class CodePages : public AcceptanceTest
{
protected:
    Host host;
};

TEST_F(CodePages, NamesOfUsers)
{
    ASSERT_TRUE(Notebook::AddUser("J\u00F6rg"));
    ASSERT_TRUE(Notebook::LogOn("J\u00F6rg"));
    host.user = "J\xF6rg";
    EXPECT_EQ("0 \"J\xF6rg\"", Ask(host, "GET_USERID"));
    ASSERT_TRUE(Notebook::SetCodePage(65001));
    host.user = "J\u00D6RG";
    EXPECT_EQ("0 \"J\u00D6RG\"", Ask(host, "GET_USERID"));
}

// The reply from an installation file has as many bytes as the text has characters.
TEST_F(CodePages, TextsOfInstallationFilesAreCut)
{
    ASSERT_TRUE(Notebook::SetCodePage(65001));
    for (const auto& [type, read] : {std::pair("type=installation file=ORVLCfg.ini", "0 \"\u00E4\u00F6b\""),
                                     {"type=profile file=p.ini", "0 \"\u00E4\u00F6bcd\""}})
    {
        const std::string key = std::string(type) + " section=S item=K";
        EXPECT_EQ("0", Ask(host, "PUT_STR_INTO_CONFIG", key + " string=\u00E4\u00F6bcd"));
        EXPECT_EQ(read, Ask(host, "GET_STR_FROM_CONFIG", key));
    }
}

} // namespace
