// tests/acceptance/FaultsTest.cpp
//
// Each single platform call of each command failing in turn: the result is a documented one, nothing stays
// open, the files stay whole, and the next request works.

#include "acceptance/AcceptanceTest.h"
#include "acceptance/SampleRequests.h"
#include "notebook/Trace.h"

#include <cstdlib>
#include <cstring>

using simulated::Faults;
using simulated::Leaks;
using simulated::Trace;

namespace
{

// Where a command makes many calls, those at the beginning and then ever fewer are let fail: the middle of a
// whole scheme repeats the same few steps for each variable. With FAULTS=all in the environment each is,
// which takes minutes.
unsigned CallAfter(unsigned nth)
{
    constexpr unsigned kEveryCallUpTo = 40;
    constexpr unsigned kShareOfStride = 6;
    const char* const faults = std::getenv("FAULTS");
    const bool isWhole = faults != nullptr && std::strcmp(faults, "all") == 0;
    return nth + (isWhole || nth < kEveryCallUpTo ? 1 : nth / kShareOfStride);
}

class FaultsOfThePlatform : public GenerationTest
{
protected:
    void SetUp() override
    {
        GenerationTest::SetUp();
        host->Uninitialize();                 // the calls of its thread aren't a request's
        host->Send("INIT_CFG_FILE");          // the user's lookup has a test of its own
        host->Send("GET_MAX_LCD_BRIGHTNESS"); // on Vista the driver stays open from here on
        Trace::Record(false);
        m_held = Leaks::Count();
    }

    // The request with its `nth` platform call failing; false when it made fewer calls.
    bool SendWithFault(const SampleRequest& request, unsigned nth)
    {
        Faults::Inject("*", nth, ERROR_GEN_FAILURE);
        const Answer answer = host->Send(request.command, request.payload);
        const bool hit = Faults::AllHit();
        Faults::Clear();
        EXPECT_TRUE(answer.code == 0 || answer.code == 1 || answer.code == 5 || answer.code == 6)
            << answer.code;
        EXPECT_EQ(m_held, Leaks::Count()) << "call " << nth << '\n' << Leaks::Describe();
        if (answer.code != 0)
        {
            EXPECT_TRUE(host->TakeEvents().empty()) << "call " << nth;
        }
        host->TakeEvents();
        CheckFiles();
        return hit;
    }

    unsigned m_held = 0; ///< what the plug-in holds between two requests
};

INSTANTIATE_TEST_SUITE_P(Windows, FaultsOfThePlatform, testing::ValuesIn(environment::Generations()));

TEST_P(FaultsOfThePlatform, OfEachCommand)
{
    for (const SampleRequest& request : SampleRequests(6))
    {
        SCOPED_TRACE(request.command);
        // A scheme whose name can't be read counts as gone and loses its row, so the rows are put back.
        const std::optional<std::string> rows = seeding::ReadBytes(ProfileFile("PowerSchemes.ini"));
        unsigned nth = 1;
        while (SendWithFault(request, nth))
        {
            nth = CallAfter(nth);
            seeding::WriteBytes(ProfileFile("PowerSchemes.ini"), rows.value_or(""));
        }
        const LONG code = host->Send(request.command, request.payload).code;
        EXPECT_TRUE(code == 0 || code == 1 || code == 5 || code == 6) << code;
        EXPECT_EQ(0, host->Send("INIT_CFG_FILE").code);
        host->TakeEvents();
    }
}

TEST_P(FaultsOfThePlatform, OfTheUsersLookup)
{
    host->user = environment::OtherUserName();
    for (unsigned nth = 1; nth < 100; ++nth)
    {
        host->Unload();
        ASSERT_TRUE(host->Load());
        Faults::Inject("*", nth, ERROR_GEN_FAILURE);
        const LONG code = host->Send("INIT_CFG_FILE").code;
        const bool hit = Faults::AllHit();
        Faults::Clear();
        EXPECT_TRUE(code == 0 || code == 6) << nth;
        EXPECT_EQ(0, host->Send("INIT_CFG_FILE").code) << nth;
        if (!hit)
        {
            return;
        }
    }
    FAIL() << "the lookup makes more calls than it should";
}

TEST_P(FaultsOfThePlatform, OfTheStart)
{
    for (unsigned nth = 1;; ++nth)
    {
        Faults::Inject("*", nth, ERROR_NOT_ENOUGH_MEMORY);
        const LONG code = host->Initialize();
        const bool hit = Faults::AllHit();
        Faults::Clear();
        if (code == 0)
        {
            host->Uninitialize();
        }
        EXPECT_EQ(m_held, Leaks::Count()) << "call " << nth << '\n' << Leaks::Describe();
        if (!hit)
        {
            EXPECT_EQ(0, code);
            return;
        }
    }
}

} // namespace
