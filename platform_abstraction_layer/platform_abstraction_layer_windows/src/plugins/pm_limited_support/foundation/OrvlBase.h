// foundation/OrvlBase.h
//
// The base of nearly all classes: a version, a virtual destructor, the log of the classes, the call to the
// service behind the boards, and the walk through the loaded hives.
#pragma once

#include "foundation/Api.h"

#include <windows.h>

struct IpbDataHeader;

/// What `GetVersion` gives on every concrete class.
constexpr ULONG kClassVersion = 1000;

/// Each exported class declares its special members and defines them out of line, though most are defaulted:
/// one that is defaulted in the class isn't exported.
class ORVL_API CORVLBase
{
public:
    CORVLBase() noexcept;
    CORVLBase(const CORVLBase&) noexcept;
    CORVLBase& operator=(const CORVLBase&) noexcept;

    virtual ULONG GetVersion() noexcept = 0;
    virtual ~CORVLBase();

    /// Writes one line, cut at 1023 characters, to "C:/temp1234567890/orvl.log". Where that folder doesn't
    /// exist the line is lost; nothing creates it.
    static void DBGOUT(const wchar_t* format, ...) noexcept;

    /// Sends `code`, `value` and `text` to the service over the boards and waits up to `timeout`
    /// milliseconds for its answer. The service's result value, or 0x80004005 when the boards can't be
    /// reached, the text doesn't fit, the wait ends without an answer or the service sends a failure notice.
    /// `reply` is not written.
    [[nodiscard]] LONG ServiceCall(unsigned int code, const wchar_t* text, ULONG value, IpbDataHeader* reply,
                                   ULONG timeout) noexcept;

    /// Looks for the loaded hive whose "Logon User Name" is `userName`. 1 when it was found and read:
    /// `subKey` (260 characters) is then the user's power policies below HKEY_USERS, `profilePath` the
    /// user's local application data folder, whose capacity in bytes `profileSize` gives on entry and whose
    /// size in bytes on return. Else 0. `subKeySize` isn't used.
    [[nodiscard]] int GetCurrentUserSubkeyProfilePath(const wchar_t* userName, wchar_t* subKey,
                                                      ULONG* subKeySize, wchar_t* profilePath,
                                                      ULONG* profileSize) noexcept;
};
