// agents/AdapterSearch.h
//
// Finds a network adapter among the present devices by words in its description. What is done with it is
// the caller's.
#pragma once

#include "foundation/Owners.h"

#include <windows.h>

#include <setupapi.h>

/// The setup class of network adapters, {4D36E972-E325-11CE-BFC1-08002BE10318}.
constexpr GUID kNetworkAdapterClass = {
    0x4D36E972, 0xE325, 0x11CE, {0xBF, 0xC1, 0x08, 0x00, 0x2B, 0xE1, 0x03, 0x18}};

/// Looks for `part` in `whole`.
using TextSearch = bool (*)(const wchar_t* whole, const wchar_t* part) noexcept;

/// True when `description` holds `word`. No description holds an empty word: an agent that wasn't initialised
/// matches no adapter.
bool HoldsWord(const wchar_t* description, const wchar_t* word, TextSearch contains) noexcept;

/// What to look for and what to log. A message gets the last error; null: nothing is logged.
struct AdapterSearch
{
    const wchar_t* firstWord;
    const wchar_t* secondWord;
    TextSearch contains;
    const wchar_t* listFailed;
    const wchar_t* endReached;
    /// An adapter whose description can't be read ends the search; without a message it is passed over.
    const wchar_t* readFailed;
};

/// An adapter and the list that it belongs to.
struct FoundAdapter
{
    owners::DeviceList list;
    SP_DEVINFO_DATA device;
};

/// The first adapter whose description contains one of the words. False when there is none.
[[nodiscard]] bool FindAdapter(const AdapterSearch& search, FoundAdapter& found) noexcept;
