// modules/user32/Cursors.cpp
//
// The wait cursor and the one that is shown. Known differences: there is no other cursor to load; each thread
// shows a cursor of its own, whether or not it has windows.

#include "base/ListBox.h"
#include "base/PlatformCall.h"

#include <winuser.h>

#include <utility>

namespace simulated
{

namespace
{

// The handles are numbers that differ from the resource numbers, so that the two can't be mixed up.
constexpr std::uintptr_t kHandleBase = 0x00010000;
constexpr std::uintptr_t kWait = 32514; // IDC_WAIT

thread_local HCURSOR shownCursor = nullptr;

HCURSOR ToHandle(std::uintptr_t number)
{
    return reinterpret_cast<HCURSOR>(kHandleBase + number);
}

Outcome<HCURSOR> Load(HINSTANCE module, LPCWSTR name)
{
    const auto number = reinterpret_cast<std::uintptr_t>(name);
    if (module != nullptr || number != kWait)
    {
        return {nullptr, ERROR_RESOURCE_NAME_NOT_FOUND};
    }
    return {ToHandle(number)};
}

} // namespace

unsigned Cursor::Shown()
{
    return shownCursor == nullptr
               ? 0
               : static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(shownCursor) - kHandleBase);
}

} // namespace simulated

using namespace simulated;

SIM_API HCURSOR WINAPI LoadCursorW(HINSTANCE module, LPCWSTR name)
{
    PlatformCall call(CallClass::Window, "LoadCursorW", SIM_CALLER);
    call.Arguments(module, name);
    return call.Result<HCURSOR>(nullptr, [&] { return Load(module, name); });
}

SIM_API HCURSOR WINAPI SetCursor(HCURSOR cursor)
{
    PlatformCall call(CallClass::Window, "SetCursor", SIM_CALLER);
    call.Arguments(cursor);
    return call.Answer(std::exchange(shownCursor, cursor));
}
