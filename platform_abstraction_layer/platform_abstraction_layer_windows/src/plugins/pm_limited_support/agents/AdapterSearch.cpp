// agents/AdapterSearch.cpp
//
// The walk over the present network adapters.

#include "agents/AdapterSearch.h"

#include "agents/PropertyChange.h"
#include "foundation/Log.h"
#include "foundation/Text.h"

bool HoldsWord(const wchar_t* description, const wchar_t* word, TextSearch contains) noexcept
{
    return *word != L'\0' && contains(description, word);
}

bool FindAdapter(const AdapterSearch& search, FoundAdapter& found) noexcept
{
    found.list.Reset(SetupDiGetClassDevsW(&kNetworkAdapterClass, nullptr, nullptr, DIGCF_PRESENT));
    if (!Check(static_cast<bool>(found.list), search.listFailed))
    {
        return false;
    }

    for (DWORD index = 0;; ++index)
    {
        found.device = EmptyDeviceRecord();
        if (!Check(SetupDiEnumDeviceInfo(found.list.Get(), index, &found.device) != FALSE, search.endReached))
        {
            return false;
        }
        // One character more than is read, so that a text without a terminator ends all the same.
        wchar_t description[text::kPathCapacity + 1] = {};
        const BOOL isRead = SetupDiGetDeviceRegistryPropertyW(
            found.list.Get(), &found.device, SPDRP_DEVICEDESC, nullptr, reinterpret_cast<BYTE*>(description),
            sizeof description - sizeof(wchar_t), nullptr);
        if (!Check(isRead != FALSE, search.readFailed) && search.readFailed != nullptr)
        {
            return false;
        }
        if (HoldsWord(description, search.firstWord, search.contains) ||
            HoldsWord(description, search.secondWord, search.contains))
        {
            return true;
        }
    }
}
