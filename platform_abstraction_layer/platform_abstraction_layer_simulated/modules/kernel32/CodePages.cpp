// modules/kernel32/CodePages.cpp
//
// Narrow and wide text.
//
// Known differences from Windows: code pages other than 65001 and the machine's own are refused, as are flags
// and a substitute of the caller's; no letter stands for one that looks like it; bytes that are no UTF-8
// become U+FFFD, which Windows XP leaves out; surrogates without their partner are converted like any
// character.

#include "base/CodePage.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <windows.h>

#include <algorithm>
#include <cstring>

using namespace simulated;

namespace
{

// Writes what fits of `units` and returns the total length; without capacity only the latter.
// `isWhole` says whether text may be cut before a unit: a character of several units isn't split.
template <class Unit, class Units, class IsWhole>
Outcome<int> Put(const Units& units, Unit* target, int capacity, IsWhole isWhole)
{
    const std::size_t length = units.size();
    std::size_t fits = std::min(length, static_cast<std::size_t>(capacity));
    const bool isCut = capacity != 0 && fits < length;
    while (isCut && fits > 0 && !isWhole(units[fits]))
    {
        --fits;
    }
    std::copy_n(units.begin(), fits, target);
    return isCut ? Outcome<int>{0, ERROR_INSUFFICIENT_BUFFER} : Outcome<int>{static_cast<int>(length)};
}

// What both directions demand of their arguments. A negative source length stands for a terminated text.
template <class From, class To>
DWORD Check(UINT codePage, DWORD flags, const From* source, int sourceLength, const To* target,
            int targetLength)
{
    const bool isValid =
        (codePage == CP_ACP || codePage == CP_UTF8) && source != nullptr && sourceLength != 0 &&
        targetLength >= 0 &&
        (targetLength == 0 || (target != nullptr && static_cast<const void*>(source) != target));
    return !isValid ? ERROR_INVALID_PARAMETER : flags != 0 ? ERROR_INVALID_FLAGS : ERROR_SUCCESS;
}

Encoding EncodingFor(UINT codePage)
{
    return codePage == CP_UTF8 ? Encoding::Utf8 : Machine::AnsiEncoding();
}

Outcome<int> Widen(UINT codePage, DWORD flags, LPCCH source, int sourceLength, LPWSTR target, int capacity)
{
    if (const DWORD error = Check(codePage, flags, source, sourceLength, target, capacity); error != 0)
    {
        return {0, error};
    }
    const std::size_t length =
        sourceLength < 0 ? std::strlen(source) + 1 : static_cast<std::size_t>(sourceLength);
    return Put(ToUtf16(Decode(EncodingFor(codePage), {source, length})), target, capacity,
               [](wchar_t unit) { return (unit & 0xFC00) != 0xDC00; });
}

Outcome<int> Narrow(UINT codePage, DWORD flags, LPCWCH source, int sourceLength, LPSTR target, int capacity)
{
    if (const DWORD error = Check(codePage, flags, source, sourceLength, target, capacity); error != 0)
    {
        return {0, error};
    }
    const std::size_t length = sourceLength < 0 ? Length(source) + 1 : static_cast<std::size_t>(sourceLength);
    const Encoding encoding = EncodingFor(codePage);
    return Put(Encode(encoding, ToUtf8(source, length)), target, capacity,
               [encoding](char byte) { return encoding != Encoding::Utf8 || (byte & 0xC0) != 0x80; });
}

} // namespace

SIM_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH source, int sourceLength,
                                       LPWSTR target, int targetLength)
{
    PlatformCall call(CallClass::Text, "MultiByteToWideChar", SIM_CALLER);
    call.Arguments(codePage, flags, static_cast<const void*>(source), sourceLength, targetLength);
    return call.Result<int>(0, [&]
                            { return Widen(codePage, flags, source, sourceLength, target, targetLength); });
}

SIM_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH source, int sourceLength,
                                       LPSTR target, int targetLength, LPCCH defaultChar,
                                       LPBOOL usedDefaultChar)
{
    PlatformCall call(CallClass::Text, "WideCharToMultiByte", SIM_CALLER);
    call.Arguments(codePage, flags, static_cast<const void*>(source), sourceLength, targetLength);
    return call.Result<int>(0,
                            [&]() -> Outcome<int>
                            {
                                if (defaultChar != nullptr || usedDefaultChar != nullptr)
                                {
                                    return {0, ERROR_INVALID_PARAMETER};
                                }
                                return Narrow(codePage, flags, source, sourceLength, target, targetLength);
                            });
}
