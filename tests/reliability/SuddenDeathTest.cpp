// tests/reliability/SuddenDeathTest.cpp
//
// The host is killed at each step of a request that changes several places. Every key and value then is the
// old or the new one, and the next process serves every command.

#include "reliability/Thorough.h"
#include "reliability/TracedProcess.h"

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "control/Snapshot.h"
#include "control/State.h"
#include "machine/Machine.h"
#include "support/BoardService.h"
#include "support/ChildProcess.h"
#include "transcripts/Samples.h"

#include <cstring>
#include <set>
#include <sstream>

using namespace simulated;

namespace
{

struct Request
{
    const char* command;
    const char* fields;

    /// Parts of places that are neither old nor new in the middle: a new scheme that is still its model's
    /// copy, the file that is deleted at the end, the hive of an account that isn't logged on.
    std::vector<std::string> passing = {};
};

constexpr unsigned kStride = 83; ///< one step of so many is tried when there is little time

const Request kRequests[] = {
    {"APPLY_SCHEME", "scheme=2"},
    {"ADD_SCHEME_ALL",
     "name=Journey desc=\"On the road\" scheme=1 ac.wifi=1 dc.wifi=0",
     {"PowerPolicies\\7", "[Scheme 7]"}},
    {"EDIT_SCHEME_ALL", "scheme=1 ac.monitorOffTimeOut=1200 dc.monitorOffTimeOut=300 ac.wifi=0 dc.wifi=1"},
    {"DELETE_SCHEME", "scheme=6"},
    {"CLEAR_SCHEMES", "selector=0", {"PowerSchemes.ini"}},
    {"CLEAR_SCHEMES", "selector=1", {"PowerSchemes.ini", "UserSchemes.ini", "HKU\\", "machine.ini [Hives]"}},
    {"PUT_STR_INTO_CONFIG", "type=profile file=Window.ini section=Place item=Title string=\"Two words\""},
};

// What a place holds in a state.
std::optional<std::string> Find(const State& state, const std::string& place)
{
    const auto found = state.find(place);
    return found == state.end() ? std::nullopt : std::optional(found->second);
}

// The bytes of a number, or of a record, which a state shows as words of 32 bits; empty for any other value.
std::vector<BYTE> BytesOf(const std::optional<std::string>& value)
{
    std::vector<BYTE> bytes;
    const std::string text = value.value_or("");
    std::istringstream words(text.starts_with("words") ? text.substr(std::strlen("words")) : text);
    for (DWORD word = 0; words >> word;)
    {
        for (int shift = 0; shift < 32; shift += 8)
        {
            bytes.push_back(static_cast<BYTE>(word >> shift));
        }
    }
    return words.eof() ? bytes : std::vector<BYTE>();
}

// Several settings may lie in one number or record, which are written one by one: each byte is an old or a
// new one.
bool IsOldOrNew(const std::optional<std::string>& value, const std::optional<std::string>& before,
                const std::optional<std::string>& after)
{
    const std::vector<BYTE> bytes = BytesOf(value);
    const std::vector<BYTE> fresh = BytesOf(after);
    const std::vector<BYTE> old = before ? BytesOf(before) : std::vector<BYTE>(fresh.size());
    bool isMixed = !bytes.empty() && bytes.size() == old.size() && bytes.size() == fresh.size();
    for (std::size_t place = 0; isMixed && place < bytes.size(); ++place)
    {
        isMixed = bytes[place] == old[place] || bytes[place] == fresh[place];
    }
    return isMixed || value == before || value == after;
}

// The places of `present` that hold neither what they held before nor what they hold afterwards.
std::vector<std::string> Strangers(const State& before, const State& after, const State& present,
                                   const std::vector<std::string>& passing)
{
    std::set<std::string> places;
    for (const State* const state : {&before, &after, &present})
    {
        for (const auto& [place, value] : *state)
        {
            places.insert(place);
        }
    }
    std::erase_if(places,
                  [&](const std::string& place)
                  {
                      const bool isPassing = std::any_of(passing.begin(), passing.end(),
                                                         [&](const std::string& part)
                                                         { return place.find(part) != place.npos; });
                      return isPassing ||
                             IsOldOrNew(Find(present, place), Find(before, place), Find(after, place));
                  });
    return {places.begin(), places.end()};
}

// True when a process of its own is served whatever it asks.
bool ServesEveryCommand()
{
    return ChildProcess(
               []
               {
                   Host host;
                   for (const Sample& sample : Samples())
                   {
                       const LONG code =
                           host.Send(sample.command, PayloadOf(sample.command, sample.fields)).code;
                       const bool isOne = code == TRX_OPERATION_OK || code == TRX_OPERATION_REFUSED ||
                                          code == TRX_UNKNOWN_COMMAND || code == TRX_OPERATION_FAIL;
                       if (!isOne)
                       {
                           return false;
                       }
                   }
                   return host.Send("GET_POWER_INFO").code == TRX_OPERATION_OK;
               })
               .Await() == 0;
}

class SuddenDeath : public AcceptanceTest, public testing::WithParamInterface<DWORD>
{
protected:
    static bool IsXp()
    {
        return GetParam() == 5;
    }

    void SetUp() override
    {
        environment::Recreate(GetParam());
        const auto addScheme = []
        {
            Host host;
            const auto payload = PayloadOf("ADD_SCHEME", "name=Travel desc=Mine scheme=1");
            return !IsXp() || host.Send("ADD_SCHEME", payload).code == TRX_OPERATION_OK;
        };
        ASSERT_EQ(0, ChildProcess(addScheme).Await());
    }
};

INSTANTIATE_TEST_SUITE_P(Windows, SuddenDeath, testing::ValuesIn(environment::Generations()));

TEST_P(SuddenDeath, OfTheHostLeavesOldOrNewValues)
{
    Snapshot snapshot(simulated::Machine::Folder());
    const State before = Observe();
    for (const Request& request : kRequests)
    {
        std::optional<Host> host;
        const auto start = [&host] { host.emplace(); };
        const auto send = [&] { host->Send(request.command, PayloadOf(request.command, request.fields)); };
        ASSERT_FALSE(IsKilledAt(100000, start, send));
        const State after = Observe();
        EXPECT_TRUE(before != after || !IsXp()) << request.command << " has nothing to lose";
        unsigned step = 1;
        unsigned deaths = 0;
        for (; snapshot.Restore() && IsKilledAt(step, start, send); ++deaths)
        {
            SCOPED_TRACE(std::string(request.command) + ' ' + request.fields + ", step " +
                         std::to_string(step));
            EXPECT_EQ(std::vector<std::string>(), Strangers(before, after, Observe(), request.passing));
            EXPECT_TRUE(ServesEveryCommand());
            step += IsThorough() ? 1 : kStride;
        }
        EXPECT_GT(deaths, 0U) << request.command;
        PrintFigure(request.command, " on ", GetParam(), ": the host killed at ", deaths, " steps");
    }
}

} // namespace
