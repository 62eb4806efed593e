// winuser.h
//
// user32: the few window functions that a device list needs.
#pragma once

#include <winnt.h>

#define LB_ADDSTRING 0x0180
#define LB_RESETCONTENT 0x0184
#define LB_GETTEXT 0x0189
#define LB_GETTEXTLEN 0x018A
#define LB_GETCOUNT 0x018B
#define LB_OKAY 0
#define LB_ERR (-1)
#define LB_ERRSPACE (-2)

#define IDC_ARROW MAKEINTRESOURCEW(32512)
#define IDC_WAIT MAKEINTRESOURCEW(32514)

SIM_API LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM first, LPARAM second);
SIM_API HCURSOR WINAPI SetCursor(HCURSOR cursor);
SIM_API HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR name);
