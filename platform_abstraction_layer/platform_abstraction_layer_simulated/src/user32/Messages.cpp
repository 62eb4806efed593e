// user32/Messages.cpp
//
// Messages to list boxes. Known difference: a list box here isn't sorted and has no item data; a window that
// belongs to another process doesn't exist.

#include "notebook/ListBox.h"
#include "notebook/PlatformCall.h"
#include "notebook/Text.h"

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
    box.items.emplace_back(source, source + Length(source));
    return static_cast<LRESULT>(box.items.size() - 1);
}

LRESULT GetText(const ListBoxContent& box, WPARAM index, LPARAM buffer)
{
    if (index >= box.items.size() || buffer == 0)
    {
        return LB_ERR;
    }
    const std::vector<wchar_t>& item = box.items[index];
    auto* const target = reinterpret_cast<wchar_t*>(buffer);
    std::copy(item.begin(), item.end(), target);
    target[item.size()] = 0;
    return static_cast<LRESULT>(item.size());
}

LRESULT Handle(ListBoxContent& box, UINT message, WPARAM first, LPARAM second)
{
    const std::lock_guard lock(box.mutex);
    switch (message)
    {
    case LB_ADDSTRING:
        return AddString(box, second);
    case LB_RESETCONTENT:
        box.items.clear();
        return LB_OKAY;
    case LB_GETCOUNT:
        return static_cast<LRESULT>(box.items.size());
    case LB_GETTEXTLEN:
        return first < box.items.size() ? static_cast<LRESULT>(box.items[first].size()) : LB_ERR;
    case LB_GETTEXT:
        return GetText(box, first, second);
    default:
        return 0; // as a window answers that leaves a message to the system
    }
}

Outcome<LRESULT> Send(HWND window, UINT message, WPARAM first, LPARAM second)
{
    const std::shared_ptr<ListBoxContent> box = Find(window);
    if (box == nullptr)
    {
        return {0, ERROR_INVALID_WINDOW_HANDLE};
    }
    return {Handle(*box, message, first, second)};
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
    return call.Result<LRESULT>(LB_ERR, [&] { return Send(window, message, first, second); });
}
