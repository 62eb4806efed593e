// modules/user32/Messages.cpp
//
// Messages to list boxes. Known differences: LB_ADDSTRING is the only one; a list box here isn't sorted; a
// window that belongs to another process doesn't exist.

#include "base/ListBox.h"
#include "base/PlatformCall.h"
#include "base/Text.h"

#include <winuser.h>

#include <map>
#include <mutex>

namespace simulated
{

struct ListBoxContent
{
    std::mutex mutex;
    std::vector<std::vector<wchar_t>> items; ///< without terminators
};

namespace
{

constexpr std::uintptr_t kFirstWindow = 0x00010010;
constexpr std::uintptr_t kWindowStep = 2;

struct Windows
{
    std::mutex mutex;
    std::map<HWND, std::shared_ptr<ListBoxContent>> open;
    std::uintptr_t next = kFirstWindow;
};

Windows& TheWindows()
{
    static Windows& windows = *new Windows;
    return windows;
}

std::shared_ptr<ListBoxContent> Find(HWND window)
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    const auto found = windows.open.find(window);
    return found == windows.open.end() ? nullptr : found->second;
}

LRESULT AddString(ListBoxContent& box, LPARAM text)
{
    const auto* const source = reinterpret_cast<const wchar_t*>(text);
    if (source == nullptr)
    {
        return LB_ERR;
    }
    const std::lock_guard lock(box.mutex);
    box.items.emplace_back(source, source + Length(source));
    return static_cast<LRESULT>(box.items.size() - 1);
}

Outcome<LRESULT> Send(HWND window, UINT message, LPARAM text)
{
    const std::shared_ptr<ListBoxContent> box = Find(window);
    if (box == nullptr)
    {
        return {0, ERROR_INVALID_WINDOW_HANDLE};
    }
    // Other messages are answered as by a window that leaves them to the system.
    return {message == LB_ADDSTRING ? AddString(*box, text) : 0};
}

} // namespace

ListBox::ListBox() : m_content(std::make_shared<ListBoxContent>()), m_window(nullptr)
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    m_window = reinterpret_cast<HWND>(windows.next);
    windows.next += kWindowStep;
    windows.open[m_window] = m_content;
}

ListBox::~ListBox()
{
    Windows& windows = TheWindows();
    const std::lock_guard lock(windows.mutex);
    windows.open.erase(m_window);
}

std::vector<std::string> ListBox::Items() const
{
    const std::lock_guard lock(m_content->mutex);
    std::vector<std::string> items;
    for (const std::vector<wchar_t>& item : m_content->items)
    {
        items.push_back(ToUtf8(item.data(), item.size()));
    }
    return items;
}

} // namespace simulated

using namespace simulated;

SIM_API LRESULT WINAPI SendMessageW(HWND window, UINT message, WPARAM first, LPARAM second)
{
    PlatformCall call(CallClass::Window, "SendMessageW", SIM_CALLER);
    call.Arguments(window, message, first, second);
    return call.Result<LRESULT>(LB_ERR, [&] { return Send(window, message, second); });
}
