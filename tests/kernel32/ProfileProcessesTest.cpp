// tests/kernel32/ProfileProcessesTest.cpp
//
// Profile files and machine.ini under several writers, killed writers and garbage: what several processes
// write is all there, and nobody ever meets a file that is neither the old nor the new.

#include "support/NotebookTest.h"

#include "notebook/IniDocument.h"
#include "notebook/Machine.h"
#include "notebook/Text.h"
#include "notebook/WholeFile.h"

#include <windows.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <functional>
#include <random>
#include <sys/wait.h>
#include <unistd.h>

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

std::vector<wchar_t> WideText(const std::string& text)
{
    std::vector<wchar_t> units = ToUtf16(text);
    units.push_back(0);
    return units;
}

bool Write(const std::string& section, const std::string& key, const std::string& value)
{
    return WritePrivateProfileStringW(WideText(section).data(), WideText(key).data(), WideText(value).data(),
                                      L"C:\\shared.ini") != FALSE;
}

// Runs `work` in a process of its own, which exits with 0 when the work answers true.
pid_t Start(const std::function<bool()>& work)
{
    const pid_t process = fork();
    if (process == 0)
    {
        _exit(work() ? 0 : 1);
    }
    return process;
}

int ExitStatus(pid_t process)
{
    int status = -1;
    waitpid(process, &status, 0);
    return status;
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
    const pid_t writers[] = {Start([] { return WriteMany('a'); }), Start([] { return WriteMany('b'); })};
    const pid_t reader = Start(
        []
        {
            // Once it is there, the shared key always has a value of a writer's.
            wchar_t value[16];
            bool seen = false;
            for (int number = 0; number < kWrites; ++number)
            {
                const DWORD length =
                    GetPrivateProfileStringW(L"shared", L"key", L"", value, 16, L"C:\\shared.ini");
                const bool whole = length >= 2 && (value[0] == L'a' || value[0] == L'b');
                if (seen && !whole)
                {
                    return false;
                }
                seen = seen || whole;
            }
            return true;
        });
    for (const pid_t process : {writers[0], writers[1], reader})
    {
        EXPECT_EQ(0, ExitStatus(process));
    }

    const IniDocument document(ReadWhole(HostFile()).value_or(""), Encoding::Windows1252);
    const std::vector<IniSection> sections = document.Contents();
    ASSERT_EQ(2U, sections.size());
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
        const pid_t writer = Start(
            []
            {
                for (int number = 0;; ++number)
                {
                    Write("s", "number", std::to_string(number));
                }
                return true;
            });
        usleep(static_cast<useconds_t>(random() % 6000));
        kill(writer, SIGKILL);
        ExitStatus(writer);
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
    EXPECT_EQ(0, ExitStatus(Start([] { return Machine::Write("Test", "Key", "2"); })));
    EXPECT_EQ(2U, Machine::ReadNumber("Test", "Key", 0)) << "the other process's write was missed";

    const auto writeOwn = [](char writer)
    {
        for (int number = 0; number < 200; ++number)
        {
            if (!Machine::WriteNumber("Test", std::string(1, writer), static_cast<unsigned>(number)))
            {
                return false;
            }
        }
        return true;
    };
    const pid_t other = Start([&] { return writeOwn('a'); });
    EXPECT_TRUE(writeOwn('b'));
    EXPECT_EQ(0, ExitStatus(other));
    EXPECT_EQ(199U, Machine::ReadNumber("Test", "a", 0));
    EXPECT_EQ(199U, Machine::ReadNumber("Test", "b", 0));
    EXPECT_EQ(3U, Machine::Keys("Test").size());

    EXPECT_TRUE(Machine::Write("Test", "Hex", "0x1F"));
    EXPECT_EQ(31U, Machine::ReadNumber("Test", "Hex", 0));
    EXPECT_TRUE(Machine::Write("Test", "Word", "12x"));
    EXPECT_EQ(5U, Machine::ReadNumber("Test", "Word", 5));
    EXPECT_TRUE(Machine::Remove("Test", "Key"));
    EXPECT_EQ(std::nullopt, Machine::Read("Test", "Key"));
    EXPECT_TRUE(Machine::Remove("TEST"));
    EXPECT_TRUE(Machine::Keys("Test").empty());
    EXPECT_EQ("SYSTEM", Machine::Account());
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
            const std::vector<std::string> sections = document.Sections();
            document.Set("s", "k", "new");
            ASSERT_EQ("new", document.Value("S", "K"));
            const std::string written = document.Bytes();
            document.Set("s", "k", "new");
            ASSERT_EQ(written, document.Bytes());
            ASSERT_GE(document.Sections().size(), sections.size());
            while (document.Remove("s", "k"))
            {
            }
            ASSERT_EQ(std::nullopt, document.Value("s", "k"));
            while (document.Remove("s"))
            {
            }
            ASSERT_EQ(std::nullopt, document.Value("s", "j"));
        }
        // A key that is replaced by itself changes nothing.
        IniDocument same(bytes, Encoding::Windows1252);
        if (const std::optional<std::string> value = same.Value("t", "j"); value && *value == "v")
        {
            const std::size_t size = same.Bytes().size();
            same.Set("t", "j", "w");
            same.Set("t", "j", "v");
            ASSERT_LE(same.Bytes().size(), size);
        }
    }
}

} // namespace
