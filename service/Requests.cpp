// service/Requests.cpp
//
// The request codes as a table.

#include "Requests.h"

#include "agents/DevMgr.h"
#include "foundation/Owners.h"
#include "foundation/Results.h"

#include <cstdio>
#include <iterator>

namespace service
{

namespace
{

using namespace service_boards;

constexpr DWORD kFailure = 0;

constexpr const wchar_t* kCompanionKey = L"Software\\Kelvo\\ORVA";
constexpr const wchar_t* kCurrentScheme = L"CurrentPwrSchemeID";
constexpr const wchar_t* kAppliedEvent = L"ApplySchemeEvent";

// Returns the system's error number, 0 when the number of the scheme was stored.
LSTATUS StoreScheme(DWORD scheme)
{
    owners::Key key;
    const LSTATUS created =
        RegCreateKeyExW(HKEY_LOCAL_MACHINE, kCompanionKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_SET_VALUE,
                        nullptr, key.Put(), nullptr);
    if (created != ERROR_SUCCESS)
    {
        return created;
    }
    return RegSetValueExW(key.Get(), kCurrentScheme, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&scheme),
                          sizeof scheme);
}

// True when a host listens and was notified.
bool SignalApplied()
{
    const owners::Handle event(OpenEventW(EVENT_MODIFY_STATE, FALSE, kAppliedEvent));
    return event && SetEvent(event.Get());
}

// A scheme was applied: note its number where the plug-in looks for it, then wake the plug-in.
Answer SchemeApplied(const Request& request)
{
    if (const LSTATUS error = StoreScheme(request.value); error != ERROR_SUCCESS)
    {
        std::printf("  storing CurrentPwrSchemeID failed with error %ld\n", static_cast<long>(error));
        return FailureNotice(ResultFromWin32(static_cast<DWORD>(error)));
    }
    std::printf("  stored CurrentPwrSchemeID %lu, %s\n", static_cast<unsigned long>(request.value),
                SignalApplied() ? "signalled ApplySchemeEvent" : "no host waits for ApplySchemeEvent");
    return {kDone, 0};
}

Answer ChangeDevice(const Request& request)
{
    const LONG result = CDevMgr::ExecStateChange(request.text, request.value);
    std::printf("  device change gave 0x%lx\n", static_cast<unsigned long>(static_cast<DWORD>(result)));
    return {kDone, static_cast<DWORD>(result)};
}

struct Service
{
    DWORD code;
    const char* name;
    Answer (*carryOut)(const Request& request);
};

constexpr Service kServices[] = {
    {kChangeDevice, "device change", ChangeDevice},
    {kSchemeApplied, "scheme applied", SchemeApplied},
};

const Service* Find(DWORD code)
{
    for (const Service& row : kServices)
    {
        if (row.code == code)
        {
            return &row;
        }
    }
    return nullptr;
}

constexpr std::size_t kEscapeLength = 4;

// Copies `text` with each control character as "\x1B", so that what a process writes on the board can neither
// forge lines nor steer a terminal. `target` has room for an escape for each character.
void EscapeControls(const wchar_t* text, wchar_t* target)
{
    constexpr const wchar_t* kDigits = L"0123456789ABCDEF";
    for (; *text != 0; ++text)
    {
        const wchar_t unit = *text;
        if (unit >= 0x20 && (unit < 0x7F || unit > 0x9F))
        {
            *target++ = unit;
            continue;
        }
        *target++ = L'\\';
        *target++ = L'x';
        *target++ = kDigits[unit / 16];
        *target++ = kDigits[unit % 16];
    }
    *target = 0;
}

} // namespace

Answer FailureNotice(LONG reason) noexcept
{
    return {kFailure, static_cast<DWORD>(reason)};
}

Answer CarryOut(const Request& request)
{
    const Service* service = Find(request.code);
    if (service == nullptr)
    {
        std::printf("  no such request code\n");
        return FailureNotice(kNotSupported);
    }
    if (!request.wellFormed)
    {
        std::printf("  the text doesn't fit the board or doesn't end\n");
        return FailureNotice(kBadArgument);
    }
    return service->carryOut(request);
}

void Print(const Request& request)
{
    const Service* service = Find(request.code);
    wchar_t shown[kEscapeLength * kTextCapacity + 1];
    EscapeControls(request.text, shown);
    char text[3 * std::size(shown)];
    if (WideCharToMultiByte(CP_ACP, 0, shown, -1, text, sizeof text, nullptr, nullptr) == 0)
    {
        text[0] = 0;
    }
    std::printf("request %lu (%s), value %lu, text \"%s\"\n", static_cast<unsigned long>(request.code),
                service == nullptr ? "unknown" : service->name, static_cast<unsigned long>(request.value),
                text);
}

} // namespace service
