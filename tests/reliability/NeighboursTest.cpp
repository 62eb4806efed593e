// tests/reliability/NeighboursTest.cpp
//
// What other processes and a full or locked machine may do to the plug-in: each has its result, soon, and
// nothing stays held.

#include "reliability/Thorough.h"

#include "acceptance/AcceptanceTest.h"
#include "acceptance/RequestWords.h"
#include "base/Trace.h"
#include "base/WholeFile.h"
#include "foundation/Owners.h"
#include "machine/Machine.h"
#include "support/BoardService.h"

#include <cwchar>
#include <filesystem>
#include <sys/stat.h>

using simulated::Faults;
using simulated::Leaks;

namespace
{

constexpr const char* kApply = "APPLY_SCHEME";
constexpr const char* kScheme = "scheme=2";
constexpr const char* kEdit = "scheme=1 ac=mains name=Wifi value=1";
constexpr const char* kMark = "type=profile file=Window.ini section=Place item=Left value=9";

class Neighbours : public AcceptanceTest
{
protected:
    // What a request answers, after which it holds what it held before.
    std::string Answered(const char* command, const std::string& fields)
    {
        const unsigned held = Leaks::Count();
        const auto begin = std::chrono::steady_clock::now();
        const std::string answer = Ask(host, command, fields);
        m_longest = std::max(m_longest, std::chrono::steady_clock::now() - begin);
        EXPECT_LT(m_longest, std::chrono::seconds(5)) << command;
        EXPECT_EQ(held, Leaks::Count()) << Leaks::Describe();
        return answer;
    }

    void TearDown() override
    {
        PrintFigure(testing::UnitTest::GetInstance()->current_test_info()->name(),
                    ": the longest request took ",
                    std::chrono::duration_cast<std::chrono::milliseconds>(m_longest).count(), " ms");
    }

    // The folder of the system's own configuration.
    static std::string Folder()
    {
        return simulated::Machine::PathOf(
            "drives/C/WINDOWS/system32/config/systemprofile/Local Settings/Application Data/Kelvo");
    }

    Host host;

private:
    std::chrono::steady_clock::duration m_longest{};
};

// A result board as any process may make it.
struct ResultBoard : CInterProcessBoard
{
    explicit ResultBoard(LONG size = service_boards::kSize)
    {
        EXPECT_EQ(0, Reset(service_boards::kResults, size, 1, service_boards::kInstance));
    }
};

// The service answers in its own time, twice, or for somebody else: an answer that isn't the last request's
// is gone by the next one.
TEST_F(Neighbours, AnswersAreTakenOncePerRequest)
{
    int requests = 0;
    BoardService service(
        [&](const service::Request&) -> std::optional<service::Answer> {
            return ++requests == 2 ? std::nullopt : std::optional(service::Answer{service_boards::kDone, 0});
        });
    EXPECT_EQ("0 answer=1", Answered(kApply, kScheme));
    EXPECT_EQ("0 answer=-1", Answered(kApply, kScheme)) << "no answer";
    ResultBoard late;
    IpbDataHeader answer{0, 7, 0};
    EXPECT_EQ(0, late.Paste(0, &answer, sizeof answer));
    EXPECT_NE(0, late.Flag(0));
    EXPECT_EQ("0 answer=2", Answered(kApply, kScheme)) << "an answer that nobody waits for";
    EXPECT_EQ("0 answer=2", Answered(kApply, kScheme));
}

TEST_F(Neighbours, AnswersOfAnyFormAreFailuresAtMost)
{
    struct Row
    {
        const char* what;
        IpbDataHeader answer;
        const char* expected;
    };
    constexpr Row kRows[] = {
        {"a failure notice", {0, 5, 0}, "0 answer=-1"},
        {"an unknown code", {0xFFFFFFFF, 0, 0}, "0 answer=-1"},
        {"a failure of what was asked", {service_boards::kDone, 0x80004005, 0}, "0 answer=-1"},
        {"a text that doesn't fit", {service_boards::kDone, 0, 0xFFFFFFFF}, "0 answer=2"},
    };
    const Row* row = kRows;
    BoardService service(
        [&](const service::Request&) -> std::optional<service::Answer>
        {
            ResultBoard results;
            IpbDataHeader answer = row->answer;
            EXPECT_EQ(0, results.Paste(0, &answer, sizeof answer));
            EXPECT_NE(0, results.Flag(0));
            return std::nullopt;
        });
    for (; row != std::end(kRows); ++row)
    {
        EXPECT_EQ(row->expected, Answered(kApply, kScheme)) << row->what;
    }
}

// Each name of the boards and of the applied event, taken by an object of another kind before the plug-in
// comes.
TEST_F(Neighbours, TakenNamesCostTheServiceAndTheEventsAlone)
{
    for (const wchar_t* const name :
         {L"Global\\IPB_EventORVL_IPB_RSLT0", L"Global\\IPB_SemaphoreORVL_IPB_PARA0",
          L"Global\\IPB_MapORVL_IPB_RSLT0"})
    {
        const owners::Handle squatter(std::wcsstr(name, L"Event") == nullptr
                                          ? CreateEventW(nullptr, TRUE, FALSE, name)
                                          : CreateSemaphoreW(nullptr, 1, 1, name));
        ASSERT_TRUE(squatter);
        EXPECT_EQ("0 answer=-1", Answered(kApply, kScheme)) << seeding::Utf8(name);
    }
    host.Uninitialize();
    const owners::Handle squatter(CreateSemaphoreW(nullptr, 1, 1, L"ApplySchemeEvent"));
    EXPECT_EQ(TRX_OPERATION_FAIL, host.Initialize());
    EXPECT_EQ("0 scheme=2", Answered("GET_ACTIVE_SCHEME", ""));
}

TEST_F(Neighbours, AFolderThatIsAFileHoldsNoConfiguration)
{
    ASSERT_LT(0U, std::filesystem::remove_all(Folder()));
    ASSERT_TRUE(simulated::WriteWhole(Folder(), "no folder"));
    EXPECT_EQ("6", Answered("PUT_INT_INTO_CONFIG", kMark));
    EXPECT_EQ("0 answer=1", Answered("EDIT_SCHEME", kEdit)) << "a file's write isn't looked at";
    EXPECT_EQ("6 answer=-1", Answered("QUERY_SCHEME", "scheme=1 ac=mains name=Wifi"));
    EXPECT_EQ("0 scheme=6", Answered("ADD_SCHEME", "name=Mine desc=x scheme=1"));
    EXPECT_EQ("no folder", simulated::ReadWhole(Folder()));
}

TEST_F(Neighbours, AReadOnlyFileStaysAsItIs)
{
    ASSERT_EQ("0", Answered("PUT_INT_INTO_CONFIG", kMark));
    const auto bytes = seeding::ReadBytes(ProfileFile("Window.ini"));
    ASSERT_EQ(0, chmod((Folder() + "/ORVL/Cfg/Window.ini").c_str(), S_IRUSR));
    EXPECT_EQ(
        "6", Answered("PUT_INT_INTO_CONFIG", "type=profile file=Window.ini section=Place item=Left value=8"));
    EXPECT_EQ(bytes, seeding::ReadBytes(ProfileFile("Window.ini")));
}

// Calls that are refused from now on, as a full disk, a locked key and a missing right refuse them.
TEST_F(Neighbours, FullDisksAndLockedKeysAreFailures)
{
    struct Row
    {
        const char* function;
        DWORD error;
        const char* command;
        const char* fields;
        const char* expected;
    };
    constexpr Row kRows[] = {
        {"WritePrivateProfileStringW", ERROR_DISK_FULL, "PUT_INT_INTO_CONFIG", kMark, "6"},
        {"WritePrivateProfileStringW", ERROR_DISK_FULL, "EDIT_SCHEME", kEdit, "0 answer=1"},
        {"WritePwrScheme", ERROR_ACCESS_DENIED, "EDIT_SCHEME",
         "scheme=1 ac=mains name=MonitorOffTimeOut value=60", "6"},
        {"RegSetValueExW", ERROR_ACCESS_DENIED, "AUTORUN_ORVA", "flag=1 path=C:\\a.exe", "6"},
        {"RegOpenKeyExW", ERROR_ACCESS_DENIED, "QUERY_SCHEME", "scheme=1 ac=mains name=Wifi", "6 answer=-1"},
        {"RegOpenKeyExW", ERROR_ACCESS_DENIED, "GET_LAN_SPEED", "", "6"},
        {"CreateFileW", ERROR_ACCESS_DENIED, "GET_LCD_BRIGHTNESS", "", "6"},
    };
    for (const Row& row : kRows)
    {
        Faults::Inject(row.function, 1, row.error, true);
        EXPECT_EQ(row.expected, Answered(row.command, row.fields)) << row.function;
        EXPECT_TRUE(Faults::AllHit()) << row.function;
        Faults::Clear();
    }
}

} // namespace
