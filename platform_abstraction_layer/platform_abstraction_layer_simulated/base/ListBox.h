// base/ListBox.h
//
// A list box of this process, for tests that hand one to the plug-in, and the cursor that is shown.
#pragma once

#include <windef.h>

#include <string>
#include <vector>

namespace simulated
{

/// A window that takes list box messages as long as this object lives.
class ListBox
{
public:
    ListBox();
    ~ListBox();
    ListBox(const ListBox&) = delete;
    ListBox& operator=(const ListBox&) = delete;

    HWND Window() const noexcept
    {
        return m_window;
    }

    /// The texts in it, in order.
    std::vector<std::string> Items() const;

private:
    HWND m_window;
};

class Cursor
{
public:
    /// The resource number of the cursor that this thread shows, 32512 for the arrow; 0 when it shows none.
    static unsigned Shown();
};

} // namespace simulated
