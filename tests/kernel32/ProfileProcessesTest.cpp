// tests/kernel32/ProfileProcessesTest.cpp
//
// Profile files and machine.ini under several writers, killed writers and garbage: what several processes
// write is all there, and nobody ever meets a file that is neither the old nor the new.

#include "support/ChildProcess.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "notebook/IniDocument.h"
#include "notebook/Machine.h"
#include "notebook/Text.h"
#include "notebook/WholeFile.h"

#include <windows.h>

#include <random>

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
    for (int number = 0; number < kWrites; ++number)
    {
        const std::string value = writer + std::to_string(number);
        const std::string key = std::string("key") + writer + std::to_string(number % 10);
        if (!Write("own", key, value) || !Write("shared", "key", value))
        {
            return false;
        }
    }
    return true;
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
    ASSERT_EQ(2U, document.Contents().size());
    EXPECT_EQ(20U, document.Keys("own").size());
    for (const char writer : {'a', 'b'})
    {
        for (int key = 0; key < 10; ++key)
        {
            const std::string last = writer + std::to_string(kWrites - 10 + key);
            EXPECT_EQ(last, document.Value("own", std::string("key") + writer + std::to_string(key)));
        }
    }
    const std::string shared = document.Value("shared", "key").value_or("");
    EXPECT_TRUE(shared == "a999" || shared == "b999") << shared;
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
        const IniDocument document(bytes, Encoding::Windows1252);
        const std::string number = document.Value("s", "number").value_or("none");
        EXPECT_EQ("[s]\r\nfiller=" + filler + "\r\nnumber=" + number + "\r\n", bytes);
    }
    EXPECT_TRUE(Write("s", "number", "last")) << "a dead writer's lock held on";
}

TEST_F(ProfileProcessesTest, MachineStateIsSharedBetweenProcesses)
{
    ASSERT_TRUE(Machine::Write("Test", "Key", "1"));
    EXPECT_EQ(1U, Machine::ReadNumber("test", "KEY", 0));
    EXPECT_EQ(0, ChildProcess([] { return Machine::Write("Test", "Key", "2"); }).Await());
    EXPECT_EQ(2U, Machine::ReadNumber("Test", "Key", 0)) << "the other process's write was missed";

    const auto writeOwn = [](const char* key)
    {
        bool done = true;
        for (DWORD number = 0; number < 200; ++number)
        {
            done = Machine::WriteNumber("Test", key, number) && done;
        }
        return done;
    };
    ChildProcess other([&] { return writeOwn("a"); });
    EXPECT_TRUE(writeOwn("b"));
    EXPECT_EQ(0, other.Await());
    EXPECT_EQ(199U, Machine::ReadNumber("Test", "a", 0));
    EXPECT_EQ(199U, Machine::ReadNumber("Test", "b", 0));
    EXPECT_EQ(3U, Machine::Keys("Test").size());
    EXPECT_TRUE(Machine::Write("Test", "Word", "12x"));
    EXPECT_EQ(5U, Machine::ReadNumber("Test", "Word", 5));
}

// A line of 10 MB costs time in proportion and nothing else.
TEST_F(ProfileProcessesTest, HugeLines)
{
    const std::string line(10 * 1024 * 1024, 'x');
    const std::string before = line + "\r\n[s]\r\nlong=" + line.substr(0, line.size() / 10) + "\r\nk=";
    ASSERT_TRUE(WriteWhole(HostFile(), before + "1\r\n"));
    EXPECT_EQ(1U, GetPrivateProfileIntW(L"s", L"k", 0, L"C:\\shared.ini"));
    wchar_t value[16];
    EXPECT_EQ(15U, GetPrivateProfileStringW(L"s", L"long", L"", value, 16, L"C:\\shared.ini"));
    EXPECT_TRUE(Write("s", "k", "2"));
    EXPECT_TRUE(ReadWhole(HostFile()) == before + "2\r\n");
}

// Whatever a file holds: what is written is read back, what is removed is gone, and nothing else has changed.
TEST_F(ProfileProcessesTest, GarbageSurvivesEdits)
{
    static constexpr std::string_view kPieces[] = {
        "[s]",  "[t]",  "[",   "]",  "k=", "j=v", ";",
        "\"",   "\r\n", "\n",  "\r", " ",  "=",   std::string_view("\0", 1),
        "\xFF", "\xE4", "\x1A"};
    std::minstd_rand random(7);
    for (int round = 0; round < 3000; ++round)
    {
        std::string bytes = round % 3 == 0 ? "\xFF\xFE" : "";
        for (auto count = random() % 24; count > 0; --count)
        {
            const std::string_view piece = kPieces[random() % std::size(kPieces)];
            for (const char character : piece)
            {
                bytes += character;
                bytes += round % 3 == 0 ? std::string(1, '\0') : "";
            }
        }
        bytes += random() % 5 == 0 ? "x" : "";
        for (const Encoding narrow : {Encoding::Windows1252, Encoding::Utf8})
        {
            IniDocument document(bytes, narrow);
            const std::size_t sections = document.Sections().size();
            document.Set("s", "k", "new");
            ASSERT_GE(document.Sections().size(), sections);
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
}

} // namespace
