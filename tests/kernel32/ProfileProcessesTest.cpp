// tests/kernel32/ProfileProcessesTest.cpp
//
// Profile files under several writers, killed writers, missing rights and garbage: what several
// processes write is all there, and nobody ever meets a file that is neither the old nor the new.

#include "support/ChildProcess.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "notebook/IniDocument.h"
#include "notebook/WholeFile.h"

#include <windows.h>

#include <random>
#include <sys/stat.h>

namespace
{

using namespace simulated;

constexpr int kWrites = 1000;

class ProfileProcessesTest : public NotebookTest
{
protected:
    std::string HostFile() const
    {
        return Folder() + "/drives/C/shared.ini";
    }
};

bool Write(const std::string& section, const std::string& key, const std::string& value)
{
    return WritePrivateProfileStringW(Wide(section).data(), Wide(key).data(), Wide(value).data(),
                                      L"C:\\shared.ini") != FALSE;
}

bool WriteMany(char writer)
{
    bool done = true;
    for (int number = 0; number < kWrites; ++number)
    {
        const std::string value = writer + std::to_string(number);
        done = Write("own", std::string("key") + writer + std::to_string(number % 10), value) &&
               Write("shared", "key", value) && done;
    }
    return done;
}

TEST_F(ProfileProcessesTest, TwoWritersLoseNothing)
{
    ChildProcess first([] { return WriteMany('a'); });
    ChildProcess second([] { return WriteMany('b'); });
    // Once it is there, the shared key always has a value of a writer's.
    wchar_t value[16];
    for (int number = 0, seen = 0; number < kWrites; ++number)
    {
        const DWORD length = GetPrivateProfileStringW(L"shared", L"key", L"", value, 16, L"C:\\shared.ini");
        const bool isWhole = length >= 2 && (value[0] == L'a' || value[0] == L'b');
        ASSERT_TRUE(isWhole || seen == 0);
        seen += isWhole ? 1 : 0;
    }
    EXPECT_EQ(0, first.Await());
    EXPECT_EQ(0, second.Await());

    const IniDocument document(ReadWhole(HostFile()).value_or(""), Encoding::Windows1252);
    const std::vector<IniSection> contents = document.Contents();
    ASSERT_EQ(2U, contents.size());
    EXPECT_EQ(20U, contents[contents[0].name == "own" ? 0 : 1].entries.size());
    for (const char writer : {'a', 'b'})
    {
        for (int key = 0; key < 10; ++key)
        {
            const std::string last = writer + std::to_string(kWrites - 10 + key);
            EXPECT_EQ(last, document.Value("own", std::string("key") + writer + std::to_string(key)));
        }
    }
}

TEST_F(ProfileProcessesTest, KilledWriterLeavesOldOrNew)
{
    const std::string filler(20000, 'x');
    ASSERT_TRUE(Write("s", "filler", filler));
    ASSERT_TRUE(Write("s", "number", "0"));
    std::minstd_rand random(20080401);
    for (int round = 0; round < 40; ++round)
    {
        ChildProcess writer(
            []
            {
                for (int number = 0;; ++number)
                {
                    Write("s", "number", std::to_string(number));
                }
                return true;
            });
        usleep(static_cast<useconds_t>(random() % 6000));
        writer.Kill();
        const std::string bytes = ReadWhole(HostFile()).value_or("");
        const std::string number =
            IniDocument(bytes, Encoding::Windows1252).Value("s", "number").value_or("none");
        EXPECT_EQ("[s]\r\nfiller=" + filler + "\r\nnumber=" + number + "\r\n", bytes);
    }
    EXPECT_TRUE(Write("s", "number", "last")) << "a dead writer's lock held on";
}

// The plug-in's tests run as one who may write everywhere; these files have no bit that says so.
TEST_F(ProfileProcessesTest, ReadOnlyFilesAndFoldersStayAsTheyAre)
{
    ASSERT_TRUE(Write("s", "k", "1"));
    const std::string before = ReadWhole(HostFile()).value_or("");
    ASSERT_EQ(0, chmod(HostFile().c_str(), 0444));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(Write("s", "k", "2")));
    EXPECT_EQ(nullptr, _wfopen(L"C:\\shared.ini", L"ab"));
    ASSERT_EQ(0, chmod(HostFile().c_str(), 0644));
    const std::string drive = Folder() + "/drives/C";
    ASSERT_EQ(0, chmod(drive.c_str(), 0555));
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(Write("s", "k", "2")));
    ASSERT_EQ(0, chmod(drive.c_str(), 0755));
    EXPECT_EQ(before, ReadWhole(HostFile()));
}

// Whatever a file holds: what is written is read back, writing it again changes nothing, what is removed is
// gone.
TEST_F(ProfileProcessesTest, GarbageSurvivesEdits)
{
    static constexpr std::string_view kPieces[] = {
        "[s]",  "[t]",  "[",   "]",  "k=", "j=v", ";",
        "\"",   "\r\n", "\n",  "\r", " ",  "=",   std::string_view("\0", 1),
        "\xFF", "\xE4", "\x1A"};
    std::minstd_rand random(7);
    for (int round = 0; round < 3000; ++round)
    {
        const bool isWide = round % 3 == 0;
        std::string bytes = isWide ? "\xFF\xFE" : "";
        for (auto count = random() % 24; count > 0; --count)
        {
            for (const char character : kPieces[random() % std::size(kPieces)])
            {
                bytes += character;
                bytes += isWide ? std::string(1, '\0') : "";
            }
        }
        IniDocument document(bytes, round % 2 == 0 ? Encoding::Windows1252 : Encoding::Utf8);
        document.Set("s", "k", "new");
        ASSERT_EQ("new", document.Value("S", "K"));
        const std::string written = document.Bytes();
        document.Set("s", "k", "new");
        ASSERT_EQ(written, document.Bytes());
        while (document.Remove("s", "k"))
        {
        }
        ASSERT_EQ(std::nullopt, document.Value("s", "k"));
        while (document.Remove("s"))
        {
        }
        ASSERT_EQ(std::nullopt, document.Value("s", "j"));
    }
}

} // namespace
