// tests/foundation/ServiceCallTest.cpp
//
// The call to the service behind the boards, with a service that answers as each test wants it.

#include "acceptance/Seeding.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlCfg.h"
#include "foundation/Results.h"
#include "notebook/Clock.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

#include <optional>
#include <thread>

using simulated::Faults;

namespace
{

constexpr LONG kSize = 0x400;
constexpr ULONG kPatience = 2000;

// The other side of the boards: waits for one request and gives one answer.
class Service
{
public:
    explicit Service(std::optional<IpbDataHeader> answer) : m_answer(answer)
    {
        EXPECT_EQ(kSucceeded, m_parameters.Reset(L"ORVL_IPB_PARA", kSize, 1, 0));
        EXPECT_EQ(kSucceeded, m_results.Reset(L"ORVL_IPB_RSLT", kSize, 1, 0));
        m_thread = std::thread([this] { Serve(); });
    }
    ~Service()
    {
        m_thread.join();
    }

    /// What came in; call when the request is over.
    IpbDataHeader header{};
    wchar_t text[506]{};

private:
    void Serve()
    {
        if (m_parameters.IsDataAvailble(kPatience) == 0)
        {
            return;
        }
        m_parameters.Flag(1);
        EXPECT_EQ(kSucceeded, m_parameters.Read(0, &header, sizeof header));
        EXPECT_EQ(kSucceeded, m_parameters.Read(sizeof header, text, static_cast<LONG>(header.size)));
        if (m_answer.has_value())
        {
            EXPECT_EQ(kSucceeded, m_results.Paste(0, &*m_answer, sizeof *m_answer));
            m_results.Flag(0);
        }
    }

    std::optional<IpbDataHeader> m_answer;
    CInterProcessBoard m_parameters;
    CInterProcessBoard m_results;
    std::thread m_thread;
};

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
    Service service(IpbDataHeader{1, 42, 0});
    EXPECT_EQ(42, Call(L"x"));
    EXPECT_EQ(3U, service.header.code);
    EXPECT_EQ(5U, service.header.value);
    EXPECT_EQ(4U, service.header.size);
    EXPECT_EQ("x", seeding::Utf8(service.text));
    EXPECT_EQ((std::vector<std::string>{"CDevMgr::DoStateChangeRemote got result 2a", ""}),
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, AFailureNoticeFailsWhateverItsValue)
{
    Service service(IpbDataHeader{0, 0, 0});
    EXPECT_EQ(kGeneralFailure, Call(L"x"));
    EXPECT_EQ((std::vector<std::string>{"A failure notice received in CDevMgr", ""}),
              seeding::LogLines("orvl.log"));
}

TEST_F(ServiceCall, ASilentServiceEndsTheWait)
{
    Service service(std::nullopt);
    EXPECT_EQ(kGeneralFailure, Call(L"x", 50));
    EXPECT_EQ((std::vector<std::string>{"Waiting inbound board data timeout.", ""}),
              seeding::LogLines("orvl.log"));
}

// An answer that came too late for an earlier request must not count for this one.
TEST_F(ServiceCall, AnOldAnswerIsNotTakenForThisOne)
{
    CInterProcessBoard results;
    ASSERT_EQ(kSucceeded, results.Reset(L"ORVL_IPB_RSLT", kSize, 1, 0));
    IpbDataHeader old{1, 13, 0};
    ASSERT_EQ(kSucceeded, results.Paste(0, &old, sizeof old));
    results.Flag(0);
    Service service(std::nullopt);
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
        Service service(IpbDataHeader{1, 0, 0});
        EXPECT_EQ(0, Call(seeding::Wide(longest).data()));
        EXPECT_EQ(1012U, service.header.size);
        EXPECT_EQ(longest, seeding::Utf8(service.text));
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
