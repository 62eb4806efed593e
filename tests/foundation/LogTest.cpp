// tests/foundation/LogTest.cpp
//
// The two logs: their switch, their limits, their line ends.

#include "acceptance/Seeding.h"
#include "foundation/OrvlBase.h"
#include "foundation/PmLog.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

using simulated::CallClass;
using simulated::Trace;

namespace
{

constexpr const char* kOrvlLog = "C:\\temp1234567890\\orvl.log";
constexpr const char* kPmLog = "C:\\temp1234567890\\trxpm.log";

using Logs = NotebookTest;

TEST_F(Logs, NothingIsMadeWhereTheFolderIsMissing)
{
    PmLog(L"lost");
    CORVLBase::DBGOUT(L"lost");
    EXPECT_FALSE(seeding::Exists("C:\\temp1234567890"));
    EXPECT_EQ(2U, Trace::Count(CallClass::Log));
}

TEST_F(Logs, EachLineIsOneOpenAndEndsInCrLf)
{
    seeding::SwitchLogsOn();
    Trace::Clear();
    PmLog(L"user %s, number %d", L"alice", -3);
    PmLog(L"a newline of its own\n");
    CORVLBase::DBGOUT(L"two\nlines 0x%x", 0xABCD);
    EXPECT_EQ(3U, Trace::Count(CallClass::Log));
    EXPECT_EQ("user alice, number -3\r\na newline of its own\r\n\r\n", seeding::ReadBytes(kPmLog));
    EXPECT_EQ("two\r\nlines 0xabcd\r\n", seeding::ReadBytes(kOrvlLog));
}

TEST_F(Logs, LongLinesAreCutAndKeepTheirEnd)
{
    seeding::SwitchLogsOn();
    const std::vector<wchar_t> text = seeding::Wide(std::string(3000, 'x'));
    PmLog(L"%s", text.data());
    CORVLBase::DBGOUT(L"%s", text.data());
    EXPECT_EQ(std::string(255, 'x') + "\r\n", seeding::ReadBytes(kPmLog));
    EXPECT_EQ(std::string(1023, 'x') + "\r\n", seeding::ReadBytes(kOrvlLog));
}

TEST_F(Logs, TextIsInTheAnsiCodePage)
{
    seeding::SwitchLogsOn();
    const std::vector<wchar_t> text = seeding::Wide("\u00F6\u20AC\u4F60");
    PmLog(L"%s", text.data());
    EXPECT_EQ("\xF6\x80?\r\n", seeding::ReadBytes(kPmLog));
    seeding::Remove(kPmLog);
    ASSERT_TRUE(simulated::Notebook::SetCodePage(65001));
    std::string signs;
    for (int index = 0; index < 1023; ++index)
    {
        signs += "\u20AC";
    }
    CORVLBase::DBGOUT(L"%s", seeding::Wide(signs).data());
    EXPECT_EQ(signs + "\r\n", seeding::ReadBytes(kOrvlLog));
}

} // namespace
