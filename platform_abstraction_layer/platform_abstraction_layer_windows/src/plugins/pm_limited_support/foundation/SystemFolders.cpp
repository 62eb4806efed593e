// foundation/SystemFolders.cpp
//
// The configuration folder of the running account.

#include "foundation/SystemFolders.h"

#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

#include <shlobj.h>

namespace folders
{

bool GetConfigurationFolder(wchar_t* target, std::size_t capacity) noexcept
{
    text::Copy(target, capacity, nullptr);

    // The system asks for room for a whole path, whatever room the caller has.
    wchar_t folder[MAX_PATH] = {};
    const HRESULT found = SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, 0, folder);
    if (FAILED(found))
    {
        CORVLBase::DBGOUT(L"SHGetFolderPath failed for %ld", found);
        return false;
    }
    // Empty for a folder that the account doesn't have yet, which the system doesn't count as a failure.
    if (folder[0] == L'\0')
    {
        return false;
    }
    text::Copy(target, capacity, folder);
    text::AppendSeparator(target, capacity);
    text::Append(target, capacity, kConfigurationFolder);
    return true;
}

} // namespace folders
