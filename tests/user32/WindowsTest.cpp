// user32/WindowsTest.cpp
//
// List boxes and cursors.

#include "notebook/ListBox.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"

#include <windows.h>

#include <gmock/gmock.h>

namespace
{

using namespace simulated;
using WindowsTest = NotebookTest;

LPARAM ToParameter(const wchar_t* text)
{
    return reinterpret_cast<LPARAM>(text);
}

} // namespace

TEST_F(WindowsTest, AListBoxTakesTextsUntilItIsGone)
{
    HWND window = nullptr;
    {
        const ListBox box;
        window = box.Window();
        EXPECT_EQ(0, SendMessageW(window, LB_ADDSTRING, 0, ToParameter(L"ACPI\\PNP0C0A\\1")));
        EXPECT_EQ(1, SendMessageW(window, LB_ADDSTRING, 0, ToParameter(L"100%s")));
        EXPECT_THAT(box.Items(), testing::ElementsAre("ACPI\\PNP0C0A\\1", "100%s"));
        EXPECT_EQ(2, SendMessageW(window, LB_GETCOUNT, 0, 0));
        EXPECT_EQ(5, SendMessageW(window, LB_GETTEXTLEN, 1, 0));
        EXPECT_EQ(LB_ERR, SendMessageW(window, LB_GETTEXTLEN, 2, 0));
    }
    EXPECT_EQ(1400, ErrorOf(SendMessageW(window, LB_ADDSTRING, 0, ToParameter(L"late")) != 0));
}

TEST_F(WindowsTest, SettingACursorAnswersTheOneBefore)
{
    const HCURSOR wait = LoadCursorW(nullptr, IDC_WAIT);
    ASSERT_NE(nullptr, wait);
    EXPECT_EQ(wait, LoadCursorW(nullptr, IDC_WAIT));
    const HCURSOR before = SetCursor(wait);
    EXPECT_EQ(32514U, Cursor::Shown());
    EXPECT_EQ(wait, SetCursor(before));
    EXPECT_EQ(1814, ErrorOf(LoadCursorW(nullptr, MAKEINTRESOURCEW(1)) != nullptr));
}
