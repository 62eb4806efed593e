// tests/foundation/ServiceCallTest.cpp
//
// The call to the service behind the boards, with a service that answers as each test wants it.

#include "acceptance/Seeding.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlCfg.h"
#include "foundation/Results.h"
#include "notebook/Clock.h"
#include "notebook/Trace.h"
#include "support/BoardService.h"
#include "support/NotebookTest.h"

using simulated::Faults;

namespace
{

constexpr LONG kSize = 0x400;
constexpr ULONG kPatience = 2000;

// What a service does that gives one answer to everything; nothing for none.
BoardService::Behaviour Always(std::optional<service::Answer> answer)
{
    return [answer](const service::Request&) { return answer; };
}

class ServiceCall : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        simulated::Clock::SetInstant(false);
        seeding::SwitchLogsOn();
    }

    LONG Call(const wchar_t* text, ULONG timeout = kPatience)
    {
        CORVLCfg anyObject;
        IpbDataHeader reply{7, 7, 7};
        const LONG result = anyObject.ServiceCall(3, text, 5, &reply, timeout);
        EXPECT_EQ(7U, reply.code);
        return result;
    }
};

TEST_F(ServiceCall, TheRequestArrivesWholeAndTheValueComesBack)
{
    BoardService service(Always(service::Answer{1, 42}));
    EXPECT_EQ(42, Call(L"x"));
    const auto requests = service.TakeRequests();
    ASSERT_EQ(1U, requests.size());
    EXPECT_EQ(3U, requests[0].code);
    EXPECT_EQ(5U, requests[0].value);
    EXPECT_EQ("x", seeding::Utf8(requests[0].text));
    EXPECT_EQ((std::vector<std::string>{"CDevMgr::DoStateChangeRemote got result 2a", ""}),
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, AFailureNoticeFailsWhateverItsValue)
{
    const BoardService service(Always(service::Answer{0, 0}));
    EXPECT_EQ(kGeneralFailure, Call(L"x"));
    EXPECT_EQ((std::vector<std::string>{"A failure notice received in CDevMgr", ""}),
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, ASilentServiceEndsTheWait)
{
    const BoardService service(Always(std::nullopt));
    EXPECT_EQ(kGeneralFailure, Call(L"x", 50));
    EXPECT_EQ((std::vector<std::string>{"Waiting inbound board data timeout.", ""}),
              seeding::LogLines("orvl.log"));
}

// An answer that came too late for an earlier request must not count for this one.
TEST_F(ServiceCall, AnOldAnswerIsNotTakenForThisOne)
{
    const BoardService service(Always(std::nullopt));
    CInterProcessBoard results;
    ASSERT_EQ(kSucceeded, results.Reset(L"ORVL_IPB_RSLT", kSize, 0, 0));
    IpbDataHeader old{1, 13, 0};
    ASSERT_EQ(kSucceeded, results.Paste(0, &old, sizeof old));
    results.Flag(0);
    EXPECT_EQ(kGeneralFailure, Call(L"x", 50));
}

TEST_F(ServiceCall, WithoutAServiceTheResultBoardIsMissedFirst)
{
    EXPECT_EQ(kGeneralFailure, Call(L"x"));
    EXPECT_EQ(std::vector<std::string>{"Failed in open IPB board for results with 80004005."},
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, ATextThatDoesntFitOpensNothing)
{
    const std::string longest(505, 't');
    {
        BoardService service;
        EXPECT_EQ(0, Call(seeding::Wide(longest).data()));
        EXPECT_EQ(longest, seeding::Utf8(service.TakeRequests().at(0).text));
    }
    seeding::Remove("C:\\temp1234567890\\orvl.log");
    simulated::Trace::Clear();
    EXPECT_EQ(kGeneralFailure, Call(seeding::Wide(longest + 't').data()));
    EXPECT_TRUE(simulated::Trace::CallsOf("OpenEventW").empty());
    EXPECT_EQ((std::vector<std::string>{"Data too long for outbound board in CDevMgr.", ""}),
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, EachStepHasItsLine)
{
    struct Case
    {
        const char* function;
        unsigned nth;
        const char* line;
    };
    constexpr Case kCases[] = {
        {"OpenEventW", 2, "Failed in open IPB board for parameters with 80004005."},
        {"MapViewOfFile", 1, "Paste data header to outbound board failed in CDevMgr."},
        {"MapViewOfFile", 2, "Paste data to outbound board failed in CDevMgr."},
        {"ResetEvent", 1, "Reset inbound board event failed in CDevMgr"},
        {"SetEvent", 1, "Set outbound board event failed in CDevMgr"},
    };
    CInterProcessBoard parameters;
    CInterProcessBoard results;
    ASSERT_EQ(kSucceeded, parameters.Reset(L"ORVL_IPB_PARA", kSize, 1, 0));
    ASSERT_EQ(kSucceeded, results.Reset(L"ORVL_IPB_RSLT", kSize, 1, 0));
    for (const Case& row : kCases)
    {
        seeding::Remove("C:\\temp1234567890\\orvl.log");
        Faults::Inject(row.function, row.nth, ERROR_ACCESS_DENIED);
        EXPECT_EQ(kGeneralFailure, Call(L"x"));
        EXPECT_EQ(row.line, seeding::LogLines("orvl.log").at(0));
        EXPECT_TRUE(Faults::AllHit());
    }
}

} // namespace
