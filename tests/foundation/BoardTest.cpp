// tests/foundation/BoardTest.cpp
//
// Boards: their objects, their lock, their bounds.

#include "acceptance/Seeding.h"
#include "base/Trace.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/Results.h"
#include "foundation/Text.h"
#include "modules/kernel32/DebugOutput.h"
#include "support/NotebookTest.h"

#include <gmock/gmock.h>

#include <array>

using simulated::DebugOutput;
using simulated::Faults;
using simulated::Trace;

namespace
{

constexpr LONG kSize = 0x400;
using Bytes = std::array<BYTE, 4>;

// Exposes the handles.
struct Board : CInterProcessBoard
{
    using CInterProcessBoard::CloseObjects;

    bool IsClosed() const
    {
        return m_hEvent == nullptr && m_hSemaphore == nullptr && m_hMap == nullptr;
    }
    Bytes ReadFour(LONG offset)
    {
        Bytes bytes{};
        EXPECT_EQ(kSucceeded, Read(offset, bytes.data(), sizeof bytes));
        return bytes;
    }
};

class Boards : public NotebookTest
{
protected:
    void SetUp() override
    {
        NotebookTest::SetUp();
        ASSERT_EQ(kSucceeded, board.Reset(L"B", kSize, 1, 0));
    }
    void TearDown() override
    {
        EXPECT_EQ(kSucceeded, board.CloseObjects());
        EXPECT_TRUE(board.IsClosed());
        NotebookTest::TearDown();
    }

    // How the plug-in called a function for the first time since the trace was cleared.
    static std::string FirstCall(const char* function)
    {
        return Trace::CallsOf(function).at(0).arguments;
    }

    Board board;
    Bytes data = {1, 2, 3, 4};
};

// Everybody may open what the service creates, and processes that it starts inherit it.
TEST_F(Boards, ObjectsAreOpenToAllUnderTheirDocumentedNames)
{
    EXPECT_EQ("1, null", FirstCall("SetSecurityDescriptorDacl"));
    EXPECT_EQ("1, 0, \"Global\\IPB_EventB0\", \"descriptor, inherited\"", FirstCall("CreateEventW"));
    EXPECT_EQ("4, 0x400, \"Global\\IPB_MapB0\", \"descriptor, inherited\"", FirstCall("CreateFileMappingW"));
    EXPECT_EQ("1, 2147483647, \"Global\\IPB_SemaphoreB0\", \"descriptor, inherited\"",
              FirstCall("CreateSemaphoreW"));
    Board opener;
    EXPECT_EQ(kSucceeded, opener.Reset(L"B", 0, 0, 0));
    EXPECT_EQ("0x1F0003, 0, \"Global\\IPB_EventB0\"", FirstCall("OpenEventW"));
    EXPECT_EQ("0xF001F, 0, \"Global\\IPB_MapB0\"", FirstCall("OpenFileMappingW"));
    EXPECT_EQ("0x1F0003, 0, \"Global\\IPB_SemaphoreB0\"", FirstCall("OpenSemaphoreW"));
    EXPECT_EQ(kSucceeded, opener.Read(4, data.data(), 4));
    EXPECT_THAT(FirstCall("MapViewOfFile"), testing::EndsWith(", 0xF001F, 0, 8"));
}

TEST_F(Boards, OpeningNeedsACreatorOfThatInstanceAndResetClosesWhatWasOpen)
{
    Board opener;
    EXPECT_EQ(kSucceeded, opener.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(kGeneralFailure, opener.Reset(L"B", kSize, 0, 1));
    EXPECT_TRUE(opener.IsClosed());
    EXPECT_EQ("Cannot Reset for 0x2", DebugOutput::Texts().back());
    EXPECT_EQ(kGeneralFailure, opener.Reset(L"C", -1, 1, 0));
    ASSERT_EQ(kSucceeded, board.Reset(L"Second", kSize, 1, 0));
    EXPECT_EQ(3U, simulated::Leaks::Count());
    EXPECT_EQ(kGeneralFailure, opener.Reset(L"B", kSize, 0, 0));
}

TEST_F(Boards, AFailingStepIsReportedAndLeavesTheBoardClosedOrItsLockFree)
{
    constexpr std::pair<const char*, const char*> kSteps[] = {
        {"InitializeSecurityDescriptor", "Cannot InitializeSecurityDescriptor for 0x8"},
        {"SetSecurityDescriptorDacl", "Cannot SetSecurityDescriptorDacl for 0x8"},
        {"CreateEventW", "Cannot Reset for 0x"},
        {"CreateFileMappingW", "Cannot Reset for 0x"},
        {"CreateSemaphoreW", "Cannot Reset for 0x8"},
    };
    for (const auto& [function, message] : kSteps)
    {
        Board other;
        Faults::Inject(function, 1, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, other.Reset(L"C", kSize, 1, 0)) << function;
        EXPECT_TRUE(other.IsClosed()) << function;
        EXPECT_THAT(DebugOutput::Texts().back(), testing::StartsWith(message));
    }
    for (const auto& [function, nth, message] :
         {std::tuple{"ReleaseSemaphore", 1U, ""},
          {"WaitForSingleObject", 2U, "Fatal,CInterProcessBoard::Lock failed.\r\n"},
          {"MapViewOfFile", 1U,
           "Failed in calling MapViewOfFile in CInterProcessBoard::Paste() with last Error 8.\n"}})
    {
        DebugOutput::Clear();
        Faults::Inject(function, nth, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, board.Paste(0, data.data(), 4));
        EXPECT_EQ(std::vector<std::string>(*message == 0 ? 0 : 1, message), DebugOutput::Texts());
        EXPECT_EQ(0, board.IsLocked()) << function;
        Faults::Inject(function, nth, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, board.Read(0, data.data(), 4));
        EXPECT_EQ(0, board.IsLocked()) << function;
    }
    EXPECT_EQ("Failed in calling MapViewOfFile in CInterProcessBoard::Read().\r\n",
              DebugOutput::Texts().back());
    Faults::Inject("ReleaseSemaphore", 2, ERROR_NOT_ENOUGH_MEMORY);
    EXPECT_EQ(kSucceeded, board.Paste(0, data.data(), 4));
    EXPECT_EQ("Fatal,calling ReleaseSemaphore in CInterProcessBoard::UnLock failed.\r\n",
              DebugOutput::Texts().back());
    EXPECT_EQ(1, board.IsLocked());
}

TEST_F(Boards, PasteAndReadKeepToTheirRange)
{
    ASSERT_EQ(kSucceeded, board.Paste(8, data.data(), 4));
    EXPECT_EQ((Bytes{0, 0, 1, 2}), board.ReadFour(6));
    ASSERT_EQ(kSucceeded, board.Clear(9, 2));
    EXPECT_EQ((Bytes{1, 0, 0, 4}), board.ReadFour(8));

    for (const auto& [offset, size] : std::initializer_list<std::pair<LONG, LONG>>{
             {-1, 4}, {0, -1}, {0x7FFFFFFF, 1}, {1, 0x7FFFFFFF}, {4096, 4}, {4093, 4}})
    {
        EXPECT_EQ(kGeneralFailure, board.Paste(offset, data.data(), size)) << offset << ' ' << size;
        EXPECT_EQ(kGeneralFailure, board.Read(offset, data.data(), size)) << offset << ' ' << size;
        EXPECT_EQ(0, board.IsLocked());
    }
    EXPECT_EQ(kGeneralFailure, board.Read(0, nullptr, 4));
}

TEST_F(Boards, AHeldLockIsSeenAndNotWaitedFor)
{
    Board other;
    ASSERT_EQ(kSucceeded, other.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(0, other.IsLocked());
    ASSERT_EQ(kSucceeded, board.Lock(0));
    Trace::Clear();
    // Testing the lock leaves it as it was, so the second test sees the same.
    EXPECT_EQ(1, other.IsLocked());
    EXPECT_EQ(1, other.IsLocked());
    EXPECT_EQ(kGeneralFailure, other.Paste(0, data.data(), 4));
    EXPECT_EQ(kGeneralFailure, other.Read(0, data.data(), 4));
    for (const simulated::TracedCall& wait : Trace::CallsOf("WaitForSingleObject"))
    {
        EXPECT_EQ("0", wait.answer) << "waited in vain";
    }
    EXPECT_EQ(4U, Trace::CallsOf("WaitForSingleObject").size()) << "only to take back";
    EXPECT_EQ(kGeneralFailure, other.Lock(0));
    EXPECT_EQ("Fatal,CInterProcessBoard::Lock failed.\r\n", DebugOutput::Texts().back());
    EXPECT_EQ(kSucceeded, board.UnLock());
    EXPECT_EQ(kSucceeded, other.Paste(0, data.data(), 4));
}

TEST_F(Boards, TheFlagIsADoorbellThatStaysOn)
{
    Board ringer;
    ASSERT_EQ(kSucceeded, ringer.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(0, board.IsDataAvailble(0));
    EXPECT_NE(0, ringer.Flag(0));
    EXPECT_EQ(1, board.IsDataAvailble(0));
    EXPECT_EQ(1, board.IsDataAvailble(0));
    EXPECT_NE(0, board.Flag(1));
    EXPECT_EQ(0, board.IsDataAvailble(0));

    Board closed;
    EXPECT_EQ(0, closed.Flag(0));
    EXPECT_EQ(0, closed.IsDataAvailble(0));
    EXPECT_THAT((std::array{closed.Paste(0, data.data(), 4), closed.Read(0, data.data(), 4), closed.Lock(0),
                            closed.UnLock()}),
                testing::Each(kGeneralFailure));
}

TEST_F(Boards, NamesAreBuiltWhereTheyFit)
{
    const auto built = [&](int size, ULONG instance)
    {
        wchar_t name[30] = L"-";
        const int answer = board.ConstructName(L"IPB_Map", L"B", name, size, instance);
        return std::to_string(answer) + ' ' + seeding::Utf8(name);
    };
    EXPECT_EQ("1 Global\\IPB_MapB12", built(30, 12));
    EXPECT_EQ("1 Global\\IPB_MapB0", built(19, 0));
    // Ten characters are set aside, which an instance of many digits exceeds.
    for (const auto& [size, instance] : {std::pair{18, 0U}, {25, 1234567890U}, {0, 0U}, {-5, 0U}})
    {
        EXPECT_EQ("0 -", built(size, instance));
    }
    EXPECT_EQ("1 Global\\IPB_MapB1234567890", built(26, 1234567890));
    wchar_t room[30];
    EXPECT_EQ(0, board.ConstructName(nullptr, L"B", room, 30, 0));
    EXPECT_EQ(0, board.ConstructName(L"IPB_Map", nullptr, room, 30, 0));
    EXPECT_EQ(0, board.ConstructName(L"IPB_Map", L"B", nullptr, 30, 0));
    EXPECT_EQ(kGeneralFailure, board.Reset(seeding::Wide(std::string(400, 'n')).data(), kSize, 1, 0));
}

} // namespace
