// tests/acceptance/UsersTest.cpp
//
// The user of a request: the table of sixteen users.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "base/Trace.h"
#include "control/Notebook.h"

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
    std::string Find(const std::string& user)
    {
        seeding::Remove("C:\\temp1234567890\\trxpm.log");
        host.user = user;
        std::string said = std::to_string(host.Send("INIT_CFG_FILE").code);
        for (const std::string& line : seeding::LogLines("trxpm.log"))
        {
            if (line.find("find") != std::string::npos || line.find("at pos") != std::string::npos)
            {
                said += ", " + line;
            }
        }
        return said;
    }

    static std::string NewIn(int slot, LONG code = 0)
    {
        const std::string number = std::to_string(slot);
        return std::to_string(code) + ", can't find subkey&path, find an empty one " + number +
               ", set subkey&path at pos" + number + (code == 0 ? " succeed" : " failed");
    }
    static std::string KnownIn(int slot)
    {
        return "0, find the subkey&path " + std::to_string(slot);
    }

    static void Make(const std::string& name)
    {
        ASSERT_TRUE(Notebook::AddUser(name));
        ASSERT_TRUE(Notebook::LogOn(name));
    }

    Host host;
};

TEST_F(Users, AKnownUserKeepsTheSlotWhateverTheCase)
{
    EXPECT_EQ(NewIn(0), Find("alice"));
    Trace::Clear();
    EXPECT_EQ(KnownIn(0), Find("ALICE"));
    EXPECT_EQ(0U, Trace::Count(simulated::CallClass::Account)) << "a known user isn't looked up again";
    EXPECT_EQ("0 \"ALICE\"", Ask(host, "GET_USERID"));

    // Stop and start leave the table as it is; so does a logoff.
    host.Initialize();
    host.Uninitialize();
    ASSERT_TRUE(Notebook::LogOff("alice"));
    EXPECT_EQ(KnownIn(0), Find("alice"));
}

TEST_F(Users, AFailedResolutionLeavesTheSlotFree)
{
    EXPECT_EQ(NewIn(0, 6), Find("nobody"));
    EXPECT_EQ(NewIn(0, 6), Find(""));
    EXPECT_EQ(NewIn(0, 6), Find("carol")); // has no hive while not logged on
    EXPECT_EQ("get user infor index failed", seeding::LogLines("trxpm.log").back());
    EXPECT_EQ(NewIn(0), Find("alice"));
}

TEST_F(Users, TheSeventeenthUserTakesSlotTwo)
{
    for (int number = 0; number < 16; ++number)
    {
        const std::string name = "user" + std::to_string(number);
        Make(name);
        ASSERT_EQ(NewIn(number), Find(name));
    }
    const std::string replaced = "0, can't find empty one, replace 2, set subkey&path at pos2 succeed";
    EXPECT_EQ(replaced, Find("alice"));
    EXPECT_EQ(replaced, Find("user2")); // was there before alice
    EXPECT_EQ(KnownIn(15), Find("user15"));

    // A failure in the replaced slot frees it.
    EXPECT_EQ("6, can't find empty one, replace 2, set subkey&path at pos2 failed", Find("nobody"));
    EXPECT_EQ(NewIn(2), Find("alice"));
}

// The system's comparison takes these names for equal, but they are different accounts.
TEST_F(Users, NamesThatReadTheSameAreDifferentUsers)
{
    int slot = 0;
    for (const auto& [name, wire] :
         {std::pair("strasse", "strasse"), {"stra\u00DFe", "stra\xDF\x65"}, {"stra\u00ADsse", "stra\xADsse"}})
    {
        Make(name);
        EXPECT_EQ(NewIn(slot++), Find(wire));
    }
}

// A name that no account can have is not looked up and takes no slot.
TEST_F(Users, ANameHas256CharactersAtMost)
{
    for (const std::size_t length : {257U, 1023U, 1500U})
    {
        EXPECT_EQ("6", Find(std::string(length, 'u'))) << length;
    }
    EXPECT_EQ(NewIn(0, 6), Find(std::string(256, 'u')));
}

} // namespace
