// tests/reliability/ServiceDeathTest.cpp
//
// Host and service are killed while they talk over the boards. Whoever is left goes on in bounded time, and a
// service that starts afterwards serves again.

#include "reliability/Thorough.h"
#include "reliability/TracedProcess.h"

#include "acceptance/AcceptanceTest.h"
#include "base/Clock.h"
#include "foundation/ServiceBoards.h"
#include "machine/Machine.h"
#include "service/ServiceProcess.h"
#include "support/ChildProcess.h"

#include <fcntl.h>

namespace
{

constexpr unsigned kStride = 37; ///< one step of so many is tried when there is little time
constexpr LONG kScheme = 2;

// False when the service doesn't come in time.
bool WaitForBoards(int milliseconds = 10000)
{
    using namespace service_boards;
    for (int passed = 0; passed < milliseconds; ++passed)
    {
        CInterProcessBoard results;
        CInterProcessBoard parameters;
        if (results.Reset(kResults, kSize, 0, kInstance) == 0 &&
            parameters.Reset(kParameters, kSize, 0, kInstance) == 0)
        {
            return true;
        }
        usleep(1000);
    }
    return false;
}

// Becomes the service, which ends after its first request.
void BecomeService()
{
    setenv("SIM_NOTEBOOK", simulated::Machine::Folder().c_str(), 1);
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // which a traced process can't do
    const int nowhere = open("/dev/null", O_RDWR);
    dup2(nowhere, STDIN_FILENO);
    dup2(nowhere, STDOUT_FILENO);
    execl(ORVLSERVICE, ORVLSERVICE, "--once", nullptr);
}

bool Apply(Host& host, bool needsService)
{
    const Answer answer = host.Send("APPLY_SCHEME", Payload(kScheme));
    return answer.code == TRX_OPERATION_OK && (answer.Number() != -1 || !needsService);
}

// A host of its own that applies a scheme when the boards are there.
bool ApplyWithService()
{
    Host host;
    return WaitForBoards() && Apply(host, true);
}

class ServiceDeath : public AcceptanceTest
{
protected:
    void SetUp() override
    {
        simulated::Clock::SetInstant(false); // two processes agree on the time only in real time
        const std::string timeout = IsThorough() ? "1000" : "300";
        ASSERT_TRUE(seeding::SetKey(InstallationFile("ORVLCfg.ini"), "OrvlDevMgr", "TimeoutMS", timeout));
    }

    // Calls `isKilledAt` for each step until it says that there was none.
    template <class Function>
    static void AtEachStep(const char* killed, Function isKilledAt)
    {
        unsigned step = 1;
        unsigned deaths = 0;
        for (bool wasKilled = true; wasKilled; step += IsThorough() ? 1 : kStride)
        {
            SCOPED_TRACE("step " + std::to_string(step));
            wasKilled = isKilledAt(step);
            deaths += wasKilled ? 1 : 0;
            ServiceProcess next(simulated::Machine::Folder(), {});
            EXPECT_EQ(0, ChildProcess(ApplyWithService).Await());
        }
        EXPECT_GT(deaths, 1U);
        PrintFigure(killed, " killed at ", deaths, " steps while the two talk");
    }
};

TEST_F(ServiceDeath, OfTheServiceLeavesTheHostItsAnswer)
{
    AtEachStep("the service",
               [](unsigned step)
               {
                   ChildProcess host(
                       []
                       {
                           Host caller;
                           WaitForBoards(200); // the service may be dead before it has them
                           return Apply(caller, false);
                       });
                   const bool wasKilled = IsKilledAt(
                       step, [] {}, BecomeService);
                   EXPECT_EQ(0, host.Await());
                   return wasKilled;
               });
}

// A host that dies while it copies to a board leaves the board locked. Then schemes are applied without the
// service until it makes its boards anew.
TEST_F(ServiceDeath, OfTheHostLeavesTheServiceToBeStartedAgain)
{
    std::optional<Host> host;
    const auto start = [&]
    {
        host.emplace();
        EXPECT_TRUE(WaitForBoards());
    };
    AtEachStep("the host",
               [&](unsigned step)
               {
                   ServiceProcess service(simulated::Machine::Folder(), {});
                   const bool wasKilled = IsKilledAt(step, start, [&] { Apply(*host, false); });
                   EXPECT_EQ(0, ChildProcess(
                                    []
                                    {
                                        Host next;
                                        return Apply(next, false);
                                    })
                                    .Await());
                   return wasKilled;
               });
}

} // namespace
