// tests/acceptance/UsersTest.cpp
//
// For whom a request is: the table of sixteen users.

#include "acceptance/AcceptanceTest.h"
#include "notebook/Notebook.h"
#include "notebook/Trace.h"

using simulated::Notebook;
using simulated::Trace;

namespace
{

class Users : public AcceptanceTest
{
protected:
    void SetUp() override
    {
        host.Uninitialize(); // its thread writes to the log too
        seeding::SwitchLogsOn();
    }

    // The result code of a request that does nothing but find its user, and what the log says of the slot.
    std::pair<LONG, std::string> Find(const std::string& user)
    {
        seeding::Remove("C:\\temp1234567890\\trxpm.log");
        host.user = user;
        const LONG code = host.Send("INIT_CFG_FILE").code;
        std::string said;
        for (const std::string& line : seeding::LogLines("trxpm.log"))
        {
            if (line.find("find") != std::string::npos || line.find("at pos") != std::string::npos)
            {
                said += line + '\n';
            }
        }
        return {code, said};
    }

    Host host;
};

std::string NewUser(int number)
{
    std::string name = "user" + std::to_string(number);
    Notebook::AddUser(name);
    Notebook::LogOn(name);
    return name;
}

TEST_F(Users, AKnownUserKeepsHisSlotWhateverTheCase)
{
    EXPECT_EQ(std::pair(LONG{0}, std::string("can't find subkey&path, find an empty one 0\n"
                                             "set subkey&path at pos0 succeed\n")),
              Find("alice"));
    Trace::Clear();
    EXPECT_EQ(std::pair(LONG{0}, std::string("find the subkey&path 0\n")), Find("ALICE"));
    EXPECT_EQ(0U, Trace::Count(simulated::CallClass::Account)) << "a known user isn't looked up again";

    // Stop and start leave the table as it is; so does a logoff.
    host.Initialize();
    host.Uninitialize();
    Notebook::LogOff("alice");
    EXPECT_EQ(std::pair(LONG{0}, std::string("find the subkey&path 0\n")), Find("alice"));
}

TEST_F(Users, AFailedResolutionLeavesTheSlotFree)
{
    const std::pair failed(LONG{6}, std::string("can't find subkey&path, find an empty one 0\n"
                                                "set subkey&path at pos0 failed\n"));
    EXPECT_EQ(failed, Find("nobody"));
    EXPECT_EQ(failed, Find("carol")); // has no hive while he isn't logged on
    EXPECT_EQ("get user infor index failed", seeding::LogLines("trxpm.log").back());
    EXPECT_EQ(0, Find("alice").first);
}

TEST_F(Users, TheSeventeenthUserTakesSlotTwo)
{
    for (int number = 0; number < 16; ++number)
    {
        ASSERT_EQ(0, Find(NewUser(number)).first) << number;
    }
    const std::pair replaced(
        LONG{0}, std::string("can't find empty one, replace 2\nset subkey&path at pos2 succeed\n"));
    EXPECT_EQ(replaced, Find("alice"));
    EXPECT_EQ(replaced, Find("user2")); // was there before alice
    EXPECT_EQ(std::pair(LONG{0}, std::string("find the subkey&path 15\n")), Find("user15"));

    // A failure in the replaced slot frees it.
    EXPECT_EQ(6, Find("nobody").first);
    EXPECT_EQ(std::pair(LONG{0}, std::string("can't find subkey&path, find an empty one 2\n"
                                             "set subkey&path at pos2 succeed\n")),
              Find("alice"));
}

TEST_F(Users, TheNameComesBackAsItWasGiven)
{
    for (const std::string user : {"alice", "ALICE"})
    {
        host.user = user;
        EXPECT_EQ(user, host.Send("GET_USERID").Text());
    }
}

TEST_F(Users, NamesAreInTheAnsiCodePage)
{
    Notebook::AddUser("J\u00F6rg");
    Notebook::LogOn("J\u00F6rg");
    EXPECT_EQ(0, Find("J\xF6rg").first);
    EXPECT_EQ("J\xF6rg", host.Send("GET_USERID").Text());
    Notebook::SetCodePage(65001);
    EXPECT_EQ(std::pair(LONG{0}, std::string("find the subkey&path 0\n")), Find("J\u00D6RG"));
}

// The system's comparison takes these names for one; they are accounts of their own all the same.
TEST_F(Users, NamesThatReadTheSameAreDifferentUsers)
{
    int slot = 0;
    for (const auto& [name, wire] :
         {std::pair("strasse", "strasse"), {"stra\u00DFe", "stra\xDF\x65"}, {"stra\u00ADsse", "stra\xADsse"}})
    {
        Notebook::AddUser(name);
        Notebook::LogOn(name);
        EXPECT_EQ(std::pair(LONG{0}, "can't find subkey&path, find an empty one " + std::to_string(slot) +
                                         "\nset subkey&path at pos" + std::to_string(slot) + " succeed\n"),
                  Find(wire));
        ++slot;
    }
}

} // namespace
