// tests/reliability/TwoProcessesTest.cpp
//
// Two hosts on one machine. No write of one undoes a key of the other, and the user scheme file keeps its
// form. What isn't guarded between processes is the choice of a new scheme's number: both may get the same
// one.

#include "reliability/Thorough.h"

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "machine/Accounts.h"
#include "support/ChildProcess.h"

#include <cstdlib>
#include <random>
#include <set>

namespace
{

constexpr int kWrites = 100;
constexpr unsigned kSeed = 20100405;

std::string MarkOf(int process)
{
    return "type=profile file=shared.ini section=Hosts item=Host" + std::to_string(process);
}

bool WriteMarks(int process)
{
    Host host;
    for (int number = 1; number <= kWrites; ++number)
    {
        const std::string mark = MarkOf(process) + " value=" + std::to_string(number);
        if (host.Send("PUT_INT_INTO_CONFIG", PayloadOf("PUT_INT_INTO_CONFIG", mark)).code != TRX_OPERATION_OK)
        {
            return false;
        }
    }
    return true;
}

using Numbers = std::multiset<LONG>;

// The schemes that a user's section in the user scheme file lists.
Numbers Listed(const std::string& user)
{
    const std::string file = seeding::LocalAppData() + "\\Kelvo\\ORVL\\Cfg\\UserSchemes.ini";
    const std::string section = simulated::Accounts::Find(user)->sid;
    const int count = std::atoi(seeding::GetKey(file, section, "Number").c_str());
    Numbers numbers;
    for (int entry = 0; entry < count; ++entry)
    {
        numbers.insert(std::atoi(seeding::GetKey(file, section, "Scheme" + std::to_string(entry)).c_str()));
    }
    return numbers;
}

// Adds and deletes schemes of one user at random. True when the user's section then lists those that were
// added and not deleted. A number may be there twice: a scheme that the other process has deleted as its own
// leaves an entry, and the number is free again.
bool AddAndDelete(const std::string& user, unsigned seed)
{
    Host host;
    host.user = user;
    std::mt19937 random(seed);
    Numbers own;
    const int steps = IsThorough() ? 500 : 50;
    for (int step = 0; step < steps; ++step)
    {
        if (own.empty() || random() % 2 == 0)
        {
            const std::string fields = "name=" + user + std::to_string(step) + " desc=x scheme=1";
            const Answer added = host.Send("ADD_SCHEME", PayloadOf("ADD_SCHEME", fields));
            if (added.code == TRX_OPERATION_OK)
            {
                own.insert(added.Number());
            }
        }
        else
        {
            const auto chosen = std::next(own.begin(), static_cast<std::ptrdiff_t>(random() % own.size()));
            if (host.Send("DELETE_SCHEME", Payload(*chosen)).code == TRX_OPERATION_OK)
            {
                own.erase(chosen);
            }
        }
    }
    PrintFigure(user, ": ", steps, " additions and deletions beside another process, ", own.size(),
                " schemes left, ", own.size() - std::set<LONG>(own.begin(), own.end()).size(),
                " numbers given twice");
    return own == Listed(user) && !testing::Test::HasFailure();
}

class TwoProcesses : public AcceptanceTest, public testing::WithParamInterface<DWORD>
{
protected:
    void SetUp() override
    {
        environment::Recreate(GetParam());
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, TwoProcesses, testing::ValuesIn(environment::Generations()));

TEST_P(TwoProcesses, UndoNoKeyOfEachOther)
{
    ChildProcess first([] { return WriteMarks(0); });
    ChildProcess second([] { return WriteMarks(1); });
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    const std::string file = ProfileFile("shared.ini");
    EXPECT_EQ(std::to_string(kWrites), seeding::GetKey(file, "Hosts", "Host0"));
    EXPECT_EQ(std::to_string(kWrites), seeding::GetKey(file, "Hosts", "Host1"));
}

TEST_P(TwoProcesses, KeepTheirEntriesInTheUserSchemeFile)
{
    ChildProcess first([] { return AddAndDelete(environment::UserName(), kSeed); });
    ChildProcess second([] { return AddAndDelete(environment::OtherUserName(), kSeed + 1); });
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
}

} // namespace
