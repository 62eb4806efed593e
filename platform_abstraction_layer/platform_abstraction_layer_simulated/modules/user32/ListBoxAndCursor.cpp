// modules/user32/ListBoxAndCursor.cpp
//
// Messages to list boxes, the wait cursor and the cursor that is shown.
//
// Known differences from Windows: LB_ADDSTRING is the only message; a list box isn't sorted; a window that
// belongs to another process doesn't exist; there is no other cursor to load; each thread shows a cursor of
// its own, whether or not it has windows.

#include "base/ListBox.h"
#include "base/PlatformCall.h"
#include "base/Text.h"

#include <winuser.h>

#include <map>
#include <mutex>
#include <utility>

namespace simulated
{

namespace
{

constexpr std::uintptr_t kFirstWindow = 0x00010010;
constexpr std::uintptr_t kWindowStep = 2;

// Cursor handles are numbers that differ from the resource numbers, so that the two can't be mixed up.
constexpr std::uintptr_t kCursorBase = 0x00010000;
constexpr std::uintptr_t kWait = 32514; // IDC_WAIT

thread_local HCURSOR shownCursor = nullptr;

struct Windows
{
    std::mutex mutex;
    std::map<HWND, std::vector<std::string>> items;
    std::uintptr_t next = kFirstWindow;
};

Windows& TheWindows()
{
    static Windows& windows = *new Windows;
    return windows;
}

Outcome<LRESULT> Send(HWND window, UINT message, const wchar_t* text)
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    const auto found = windows.items.find(window);
    if (found == windows.items.end())
    {
        return {0, ERROR_INVALID_WINDOW_HANDLE};
    }
    // Other messages return what the system's default handling does.
    if (message != LB_ADDSTRING)
    {
        return {0};
    }
    found->second.push_back(ToUtf8(text));
    return {static_cast<LRESULT>(found->second.size() - 1)};
}

} // namespace

ListBox::ListBox()
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    m_window = reinterpret_cast<HWND>(windows.next);
    windows.next += kWindowStep;
    windows.items[m_window];
}

ListBox::~ListBox()
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    windows.items.erase(m_window);
}

std::vector<std::string> ListBox::Items() const
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    return windows.items[m_window];
}

unsigned Cursor::Shown()
{
    return shownCursor == nullptr
               ? 0
               : static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(shownCursor) - kCursorBase);
}

} // namespace simulated

using namespace simulated;

SIM_API LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM first, LPARAM second)
{
    PlatformCall call(CallClass::Window, "SendMessageW", SIM_CALLER);
    call.Arguments(window, message, first, second);
    return call.Result<LRESULT>(LB_ERR, [&]
                                { return Send(window, message, reinterpret_cast<const wchar_t*>(second)); });
}

SIM_API HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR name)
{
    PlatformCall call(CallClass::Window, "LoadCursorW", SIM_CALLER);
    call.Arguments(module, name);
    return call.Result<HCURSOR>(nullptr,
                                [&]() -> Outcome<HCURSOR>
                                {
                                    if (module != nullptr || reinterpret_cast<std::uintptr_t>(name) != kWait)
                                    {
                                        return {nullptr, ERROR_RESOURCE_NAME_NOT_FOUND};
                                    }
                                    return {reinterpret_cast<HCURSOR>(kCursorBase + kWait)};
                                });
}

SIM_API HCURSOR WINAPI SetCursor(HCURSOR cursor)
{
    PlatformCall call(CallClass::Window, "SetCursor", SIM_CALLER);
    call.Arguments(cursor);
    return call.Answer(std::exchange(shownCursor, cursor));
}
