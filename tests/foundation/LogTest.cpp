// tests/foundation/LogTest.cpp
//
// The two logs: their switch, their limits, their line ends.

#include "foundation/Log.h"
#include "acceptance/Seeding.h"
#include "base/Trace.h"
#include "foundation/OrvlBase.h"
#include "support/NotebookTest.h"

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
    EXPECT_EQ(2U, simulated::Trace::Count(simulated::CallClass::Log));
}

TEST_F(Logs, LinesEndInCrLf)
{
    seeding::SwitchLogsOn();
    PmLog(L"user %s, number %d", L"alice", -3);
    PmLog(L"a newline of its own\n");
    CORVLBase::DBGOUT(L"two\nlines 0x%x", 0xABCD);
    EXPECT_EQ("user alice, number -3\r\na newline of its own\r\n\r\n", seeding::ReadBytes(kPmLog));
    EXPECT_EQ("two\r\nlines 0xabcd\r\n", seeding::ReadBytes(kOrvlLog));
}

std::string EuroSigns(std::size_t count)
{
    std::string signs;
    while (count-- > 0)
    {
        signs += "\u20AC";
    }
    return signs;
}

// Characters count for the cut, not the bytes that they become.
TEST_F(Logs, LongLinesInTheAnsiCodePageAreCutAndKeepTheirEnd)
{
    seeding::SwitchLogsOn();
    PmLog(L"%s", seeding::Wide("\u00F6\u20AC\u4F60").data());
    EXPECT_EQ("\xF6\x80?\r\n", seeding::ReadBytes(kPmLog));
    seeding::Remove(kPmLog);
    ASSERT_TRUE(simulated::Notebook::SetCodePage(65001));
    const std::vector<wchar_t> text = seeding::Wide(EuroSigns(3000));
    PmLog(L"%s", text.data());
    CORVLBase::DBGOUT(L"%s", text.data());
    EXPECT_EQ(EuroSigns(255) + "\r\n", seeding::ReadBytes(kPmLog));
    EXPECT_EQ(EuroSigns(1023) + "\r\n", seeding::ReadBytes(kOrvlLog));
}

} // namespace
