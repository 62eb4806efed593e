// include/winuser.h
//
// user32: the few window functions that a device list needs.
#pragma once

#include <winnt.h>

#define LB_ADDSTRING 0x0180
#define LB_ERR (-1)

#define IDC_WAIT MAKEINTRESOURCEW(32514)

SIM_API LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM first, LPARAM second);
SIM_API HCURSOR WINAPI SetCursor(HCURSOR cursor);
SIM_API HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR name);
