// foundation/ServiceBoards.h
//
// What the plug-in and the service behind the boards agree on: the names and the size of the two boards, the
// codes of requests and answers, how long an answer may take. The header of what they carry is that of every
// board (InterProcessBoard.h).
#pragma once

#include "foundation/InterProcessBoard.h"
#include "foundation/OrvlCfg.h"

#include <cstddef>

namespace service_boards
{

constexpr const wchar_t* kParameters = L"ORVL_IPB_PARA";
constexpr const wchar_t* kResults = L"ORVL_IPB_RSLT";
constexpr LONG kSize = 0x400;
constexpr ULONG kInstance = 0;

/// The longest text behind the header in characters, terminator included.
constexpr std::size_t kTextCapacity = (kSize - sizeof(IpbDataHeader)) / sizeof(wchar_t);

/// The text is a device's instance id, the value what becomes of it: 1 enables, 2 disables.
constexpr DWORD kChangeDevice = 2;

/// The text is the configuration folder, the value the number of the applied scheme.
constexpr DWORD kSchemeApplied = 3;

/// The code of an answer; any other is a failure notice.
constexpr DWORD kDone = 1;

/// How long the service may take, in milliseconds, as the open root file says. A negative number would be a
/// wait without end, so the default stands for it too.
inline ULONG ReadTimeout(CORVLCfg& root, int defaultTimeout) noexcept
{
    const int timeout = root.GetInt(L"OrvlDevMgr", L"TimeoutMS", defaultTimeout);
    return static_cast<ULONG>(timeout < 0 ? defaultTimeout : timeout);
}

} // namespace service_boards
