// tests/foundation/ServiceCallTest.cpp
//
// The call to the service behind the boards, with a service whose answers each test chooses.

#include "acceptance/Seeding.h"
#include "base/Clock.h"
#include "base/Trace.h"
#include "foundation/OrvlCfg.h"
#include "foundation/Results.h"
#include "support/BoardService.h"
#include "support/NotebookTest.h"

using simulated::Faults;

namespace
{

class ServiceCall : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        simulated::Clock::SetInstant(false);
        seeding::SwitchLogsOn();
    }

    // The result, and the last line of the log, whose format ends in a line end of its own.
    std::pair<LONG, std::string> Call(const std::string& text)
    {
        seeding::Remove("C:\\temp1234567890\\orvl.log");
        CORVLCfg anyObject;
        IpbDataHeader reply{7, 7, 7};
        const LONG result = anyObject.ServiceCall(3, seeding::Wide(text).data(), 5, &reply, 2000);
        EXPECT_EQ(7U, reply.code);
        std::string lines;
        for (const std::string& line : seeding::LogLines("orvl.log"))
        {
            lines += line.empty() ? "$" : line;
        }
        return {result, lines};
    }
};

using Outcome = std::pair<LONG, std::string>;

TEST_F(ServiceCall, TheRequestArrivesWholeAndTheValueComesBack)
{
    const std::string longest(505, 't');
    BoardService service(
        [](const service::Request& request) {
            return service::Answer{*request.text == L'f' ? 0U : 1U, 42};
        });
    EXPECT_EQ(Outcome(42, "CDevMgr::DoStateChangeRemote got result 2a$"), Call("x"));
    EXPECT_EQ(42, Call(longest).first);
    EXPECT_EQ(42, CORVLCfg().ServiceCall(3, nullptr, 5, nullptr, 2000));
    const auto requests = service.TakeRequests();
    ASSERT_EQ(3U, requests.size());
    EXPECT_EQ(std::pair(3U, 5U), std::pair(requests[0].code, requests[0].value));
    EXPECT_EQ("x", seeding::Utf8(requests[0].text));
    EXPECT_EQ(longest, seeding::Utf8(requests[1].text));
    EXPECT_EQ("", seeding::Utf8(requests[2].text));
    EXPECT_EQ(Outcome(kGeneralFailure, "A failure notice received in CDevMgr$"), Call("fail"));
    simulated::Trace::Clear();
    EXPECT_EQ(Outcome(kGeneralFailure, "Data too long for outbound board in CDevMgr.$"), Call(longest + 't'));
    EXPECT_TRUE(simulated::Trace::CallsOf("OpenEventW").empty());
}

// The other steps are in the failure rows of commands.
TEST_F(ServiceCall, StepsOfTheSecondBoardHaveTheirLines)
{
    BoardService service;
    for (const auto& [function, line] :
         {std::pair{"OpenEventW", "Failed in open IPB board for parameters with 80004005."},
          {"MapViewOfFile", "Paste data to outbound board failed in CDevMgr.$"}})
    {
        Faults::Inject(function, 2, ERROR_ACCESS_DENIED);
        EXPECT_EQ(Outcome(kGeneralFailure, line), Call("x"));
    }
}

} // namespace
