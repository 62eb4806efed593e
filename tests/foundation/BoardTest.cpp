// tests/foundation/BoardTest.cpp
//
// Boards: their objects, their lock, their bounds.

#include "acceptance/Seeding.h"
#include "foundation/InterProcessBoard.h"
#include "foundation/Results.h"
#include "foundation/Text.h"
#include "notebook/DebugOutput.h"
#include "notebook/Trace.h"
#include "support/NotebookTest.h"

#include <array>

using simulated::DebugOutput;
using simulated::Faults;
using simulated::Trace;

namespace
{

constexpr LONG kSize = 0x400;

// Shows the handles, which are the class's own business.
struct Board : CInterProcessBoard
{
    bool IsClosed() const
    {
        return m_hEvent == nullptr && m_hSemaphore == nullptr && m_hMap == nullptr;
    }
};

class Boards : public NotebookTest
{
protected:
    std::array<BYTE, 4> ReadFour(CInterProcessBoard& board, LONG offset)
    {
        std::array<BYTE, 4> bytes{};
        EXPECT_EQ(kSucceeded, board.Read(offset, bytes.data(), sizeof bytes));
        return bytes;
    }
};

using Bytes = std::array<BYTE, 4>;

TEST_F(Boards, OpeningNeedsACreator)
{
    Board opener;
    EXPECT_EQ(kGeneralFailure, opener.Reset(L"B", kSize, 0, 0));
    EXPECT_TRUE(opener.IsClosed());
    EXPECT_EQ("Cannot Reset for 0x2", DebugOutput::Texts().back());

    Board creator;
    ASSERT_EQ(kSucceeded, creator.Reset(L"B", kSize, 1, 0));
    EXPECT_EQ(kSucceeded, opener.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(kGeneralFailure, opener.Reset(L"B", kSize, 0, 1)); // another instance
    EXPECT_TRUE(opener.IsClosed());
}

TEST_F(Boards, ObjectsHaveTheirDocumentedNames)
{
    Board board;
    ASSERT_EQ(kSucceeded, board.Reset(L"ORVL_IPB_PARA", kSize, 1, 0));
    EXPECT_NE(std::string::npos,
              Trace::CallsOf("CreateEventW")[0].arguments.find("Global\\IPB_EventORVL_IPB_PARA0"));
    EXPECT_NE(std::string::npos,
              Trace::CallsOf("CreateFileMappingW")[0].arguments.find("Global\\IPB_MapORVL_IPB_PARA0"));
    EXPECT_NE(std::string::npos,
              Trace::CallsOf("CreateSemaphoreW")[0].arguments.find("Global\\IPB_SemaphoreORVL_IPB_PARA0"));
}

TEST_F(Boards, AnyFailingStepLeavesTheBoardClosed)
{
    constexpr std::pair<const char*, const char*> kSteps[] = {
        {"InitializeSecurityDescriptor", "Cannot InitializeSecurityDescriptor for 0x8"},
        {"SetSecurityDescriptorDacl", "Cannot SetSecurityDescriptorDacl for 0x8"},
        {"CreateEventW", nullptr},
        {"CreateFileMappingW", nullptr},
        {"CreateSemaphoreW", "Cannot Reset for 0x8"},
    };
    for (const auto& [function, message] : kSteps)
    {
        Board board;
        Faults::Inject(function, 1, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, board.Reset(L"B", kSize, 1, 0)) << function;
        EXPECT_TRUE(board.IsClosed()) << function;
        if (message != nullptr)
        {
            EXPECT_EQ(message, DebugOutput::Texts().back());
        }
    }
}

TEST_F(Boards, PasteAndReadKeepToTheirRange)
{
    Board board;
    ASSERT_EQ(kSucceeded, board.Reset(L"B", kSize, 1, 0));
    Bytes data = {1, 2, 3, 4};
    ASSERT_EQ(kSucceeded, board.Paste(8, data.data(), 4));
    EXPECT_EQ((Bytes{0, 0, 1, 2}), ReadFour(board, 6));
    ASSERT_EQ(kSucceeded, board.Clear(9, 2));
    EXPECT_EQ((Bytes{1, 0, 0, 4}), ReadFour(board, 8));

    constexpr std::pair<LONG, LONG> kOutside[] = {
        {-1, 4}, {0, -1}, {0x7FFFFFFF, 1}, {1, 0x7FFFFFFF}, {4096, 4}, {4093, 4},
    };
    for (const auto& [offset, size] : kOutside)
    {
        EXPECT_EQ(kGeneralFailure, board.Paste(offset, data.data(), size)) << offset << ' ' << size;
        EXPECT_EQ(kGeneralFailure, board.Read(offset, data.data(), size)) << offset << ' ' << size;
        EXPECT_EQ(0, board.IsLocked());
    }
    EXPECT_EQ(kGeneralFailure, board.Read(0, nullptr, 4));
}

TEST_F(Boards, AHeldLockIsSeenAndNotWaitedFor)
{
    Board holder;
    Board other;
    ASSERT_EQ(kSucceeded, holder.Reset(L"B", kSize, 1, 0));
    ASSERT_EQ(kSucceeded, other.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(0, other.IsLocked());
    ASSERT_EQ(kSucceeded, holder.Lock(0));

    // Testing the lock takes back what it gave, so the second test sees the same.
    EXPECT_EQ(1, other.IsLocked());
    EXPECT_EQ(1, other.IsLocked());
    Bytes data{};
    EXPECT_EQ(kGeneralFailure, other.Paste(0, data.data(), 4));
    EXPECT_EQ(kGeneralFailure, other.Read(0, data.data(), 4));
    EXPECT_EQ(kGeneralFailure, other.Lock(0));
    EXPECT_EQ("Fatal,CInterProcessBoard::Lock failed.\r\n", DebugOutput::Texts().back());
    EXPECT_EQ(kSucceeded, holder.UnLock());
    EXPECT_EQ(kSucceeded, other.Paste(0, data.data(), 4));
}

// Each wait, release and mapping that fails must leave the lock free.
TEST_F(Boards, AFailingPasteLeavesTheLockFree)
{
    Board board;
    ASSERT_EQ(kSucceeded, board.Reset(L"B", kSize, 1, 0));
    Bytes data{};
    for (const char* const function : {"ReleaseSemaphore", "MapViewOfFile"})
    {
        Faults::Inject(function, 1, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, board.Paste(0, data.data(), 4));
        EXPECT_EQ(0, board.IsLocked()) << function;
        Faults::Inject(function, 1, ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(kGeneralFailure, board.Read(0, data.data(), 4));
        EXPECT_EQ(0, board.IsLocked()) << function;
    }
    EXPECT_EQ("Failed in calling MapViewOfFile in CInterProcessBoard::Read().\r\n",
              DebugOutput::Texts().back());
}

TEST_F(Boards, TheFlagIsADoorbellThatStaysOn)
{
    Board ringer;
    Board waiter;
    ASSERT_EQ(kSucceeded, waiter.Reset(L"B", kSize, 1, 0));
    ASSERT_EQ(kSucceeded, ringer.Reset(L"B", kSize, 0, 0));
    EXPECT_EQ(0, waiter.IsDataAvailble(0));
    EXPECT_NE(0, ringer.Flag(0));
    EXPECT_EQ(1, waiter.IsDataAvailble(0));
    EXPECT_EQ(1, waiter.IsDataAvailble(0));
    EXPECT_NE(0, waiter.Flag(1));
    EXPECT_EQ(0, waiter.IsDataAvailble(0));
}

TEST_F(Boards, AClosedBoardDoesNothing)
{
    Board board;
    Bytes data{};
    EXPECT_EQ(kGeneralFailure, board.Paste(0, data.data(), 4));
    EXPECT_EQ(kGeneralFailure, board.Read(0, data.data(), 4));
    EXPECT_EQ(kGeneralFailure, board.Lock(0));
    EXPECT_EQ(kGeneralFailure, board.UnLock());
    EXPECT_EQ(0, board.Flag(0));
    EXPECT_EQ(0, board.IsDataAvailble(0));
}

TEST_F(Boards, NamesAreBuiltWhereTheyFit)
{
    Board board;
    wchar_t name[30] = L"before";
    EXPECT_EQ(1, board.ConstructName(L"IPB_Map", L"B", name, 30, 12));
    EXPECT_EQ("Global\\IPB_MapB12", seeding::Utf8(name));
    text::Copy(name, L"before");

    // Ten characters are set aside, which an instance of many digits exceeds.
    constexpr std::pair<int, ULONG> kTooSmall[] = {{18, 0}, {19, 1234567890}, {0, 0}, {-5, 0}};
    for (const auto& [size, instance] : kTooSmall)
    {
        EXPECT_EQ(0, board.ConstructName(L"IPB_Map", L"B", name, size, instance)) << size;
        EXPECT_EQ("before", seeding::Utf8(name));
    }
    EXPECT_EQ(1, board.ConstructName(L"IPB_Map", L"B", name, 19, 0));
    EXPECT_EQ(0, board.ConstructName(nullptr, L"B", name, 30, 0));
    EXPECT_EQ(0, board.ConstructName(L"IPB_Map", nullptr, name, 30, 0));
    EXPECT_EQ(0, board.ConstructName(L"IPB_Map", L"B", nullptr, 30, 0));

    // The room is the caller's; a board's own names have 260 characters.
    const std::vector<wchar_t> longName = seeding::Wide(std::string(400, 'n'));
    wchar_t room[500];
    EXPECT_EQ(1, board.ConstructName(L"IPB_Map", longName.data(), room, 500, 0));
    EXPECT_EQ("Global\\IPB_Map" + std::string(400, 'n') + "0", seeding::Utf8(room));
    EXPECT_EQ(kGeneralFailure, board.Reset(longName.data(), kSize, 1, 0));
}

TEST_F(Boards, ResetClosesWhatWasOpen)
{
    Board board;
    ASSERT_EQ(kSucceeded, board.Reset(L"First", kSize, 1, 0));
    ASSERT_EQ(kSucceeded, board.Reset(L"Second", kSize, 1, 0));
    EXPECT_EQ(3U, simulated::Leaks::Count());
    Board first;
    EXPECT_EQ(kGeneralFailure, first.Reset(L"First", kSize, 0, 0));
}

} // namespace
