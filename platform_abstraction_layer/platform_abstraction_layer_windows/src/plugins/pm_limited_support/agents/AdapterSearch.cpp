// agents/AdapterSearch.cpp
//
// The walk over the present network adapters.

#include "agents/AdapterSearch.h"

#include "agents/PropertyChange.h"
#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

namespace
{

// Logs `message`, where there is one, with the last error. Always false.
bool Fail(const wchar_t* message) noexcept
{
    if (message != nullptr)
    {
        CORVLBase::DBGOUT(message, GetLastError());
    }
    return false;
}

} // namespace

bool HoldsWord(const wchar_t* description, const wchar_t* word, TextSearch contains) noexcept
{
    return *word != L'\0' && contains(description, word);
}

bool FindAdapter(const AdapterSearch& search, FoundAdapter& found) noexcept
{
    found.list.Reset(SetupDiGetClassDevsW(&kNetworkAdapterClass, nullptr, nullptr, DIGCF_PRESENT));
    if (!found.list)
    {
        return Fail(search.listFailed);
    }

    for (DWORD index = 0;; ++index)
    {
        found.device = EmptyDeviceRecord();
        if (!SetupDiEnumDeviceInfo(found.list.Get(), index, &found.device))
        {
            return Fail(search.endReached);
        }
        // One character more than is read, so that a text without a terminator ends all the same.
        wchar_t description[text::kPathCapacity + 1] = {};
        const BOOL isRead = SetupDiGetDeviceRegistryPropertyW(
            found.list.Get(), &found.device, SPDRP_DEVICEDESC, nullptr, reinterpret_cast<BYTE*>(description),
            sizeof description - sizeof(wchar_t), nullptr);
        if (!isRead && search.readFailed != nullptr)
        {
            return Fail(search.readFailed);
        }
        if (HoldsWord(description, search.firstWord, search.contains) ||
            HoldsWord(description, search.secondWord, search.contains))
        {
            return true;
        }
    }
}
