// modules/powrprof/PowerStoreText.h
//
// Wide texts of the power manager: registry paths, numbers and GUIDs as the store spells them.
#pragma once

#include <windows.h>

#include <cstddef>
#include <vector>

namespace power_store
{

/// A text of known length for a registry path or a value; always terminated.
using WideText = std::vector<wchar_t>;

/// The units before the terminator; a null pointer has none.
std::size_t Length(const wchar_t* text) noexcept;

WideText ToText(const wchar_t* text);
WideText ToText(DWORD number);

/// "381b4222-f694-41f0-9685-ff5bb260df2e": the form in which the registry keeps GUIDs here.
WideText ToText(const GUID& guid);

/// `parent`, a backslash and the text of `child`, which is a text, a number or a GUID.
template <class Child>
WideText Join(const WideText& parent, const Child& child)
{
    WideText joined = parent;
    const WideText text = ToText(child);
    joined.back() = L'\\';
    joined.insert(joined.end(), text.begin(), text.end());
    return joined;
}

/// True when `text` is a decimal number of 32 bits and nothing else.
bool ParseNumber(const wchar_t* text, DWORD& number) noexcept;

/// True when `text` is a GUID without braces and nothing else.
bool ParseGuid(const wchar_t* text, GUID& guid) noexcept;

} // namespace power_store
