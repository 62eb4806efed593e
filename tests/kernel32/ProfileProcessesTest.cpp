// tests/kernel32/ProfileProcessesTest.cpp
//
// Profile files under several writers, killed writers and missing rights: what several processes write is all
// there, and nobody ever sees a file that is neither the old nor the new.

#include "support/ChildProcess.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "base/WholeFile.h"

#include <windows.h>

#include <climits>
#include <sys/stat.h>

namespace
{

using simulated::ReadWhole;

constexpr int kWrites = 300;

class ProfileProcessesTest : public NotebookTest
{
protected:
    std::string HostFile() const
    {
        return Folder() + "/drives/C/shared.ini";
    }
};

bool Write(const std::string& key, const std::string& value)
{
    return WritePrivateProfileStringW(L"s", Wide(key).data(), Wide(value).data(), L"C:\\shared.ini") != FALSE;
}

UINT Read(LPCWSTR key)
{
    return GetPrivateProfileIntW(L"s", key, 0, L"C:\\shared.ini");
}

bool WriteMany(const std::string& key, int count)
{
    bool done = true;
    for (int number = 1; number <= count; ++number)
    {
        done = Write(key, std::to_string(number)) && done;
    }
    return done;
}

TEST_F(ProfileProcessesTest, TwoWritersLoseNothing)
{
    ChildProcess first([] { return WriteMany("a", kWrites); });
    ChildProcess second([] { return WriteMany("b", kWrites); });
    for (UINT last = 0, round = 0; round < kWrites; ++round)
    {
        const UINT present = Read(L"a");
        ASSERT_LE(last, present);
        last = present;
    }
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());
    EXPECT_EQ("[s]\r\n", ReadWhole(HostFile()).value_or("").substr(0, 5));
    EXPECT_EQ(UINT{kWrites}, Read(L"a"));
    EXPECT_EQ(UINT{kWrites}, Read(L"b"));
}

TEST_F(ProfileProcessesTest, KilledWriterLeavesOldOrNew)
{
    const std::string filler(20000, 'x');
    ASSERT_TRUE(Write("filler", filler));
    for (unsigned round = 0; round < 20; ++round)
    {
        ChildProcess writer([] { return WriteMany("number", INT_MAX); });
        usleep(1000 + round * 300);
        writer.Kill();
        const std::string number = std::to_string(Read(L"number"));
        const std::string line = number == "0" ? "" : "number=" + number + "\r\n";
        EXPECT_EQ("[s]\r\nfiller=" + filler + "\r\n" + line, ReadWhole(HostFile()));
    }
    EXPECT_TRUE(Write("number", "last")) << "a dead writer's lock held on";
}

// Natively the tests may run as root, which may write any file; the simulated file is read-only all the same.
TEST_F(ProfileProcessesTest, ReadOnlyFilesStayAsTheyAre)
{
    ASSERT_TRUE(Write("k", "1"));
    ASSERT_EQ(0, chmod(HostFile().c_str(), 0444));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(Write("k", "2")));
    EXPECT_EQ(nullptr, _wfopen(L"C:\\shared.ini", L"ab"));
    EXPECT_EQ(1U, Read(L"k"));
}

} // namespace
