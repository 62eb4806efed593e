// scheme/SchemeFiles.cpp
//
// Opening the configuration files of the scheme side.

#include "scheme/SchemeFiles.h"

#include "foundation/UserFolders.h"

#include <shlwapi.h>

#include <iterator>

namespace files
{

bool OpenRoot(CORVLCfg& root) noexcept
{
    return root.Initialize(L"ORVLCfg.ini") != 0;
}

bool FindName(const NameKey& which, ShortText& name) noexcept
{
    name[0] = L'\0';
    CORVLCfg root;
    return OpenRoot(root) && root.GetString(which.section, which.key, name) > 0;
}

bool OpenOwn(CORVLProfile& file, const ShortText& name) noexcept
{
    return name[0] != L'\0' && file.Initialize(name, nullptr, 0) != 0;
}

bool OpenOwn(CORVLProfile& file, CORVLCfg& root, const NameKey& which) noexcept
{
    ShortText name;
    return root.GetString(which.section, which.key, name) > 0 && OpenOwn(file, name);
}

bool OpenValues(CORVLProfile& file) noexcept
{
    CORVLCfg root;
    return OpenRoot(root) && OpenOwn(file, root, kValuesName);
}

bool OpenUsers(CORVLProfile& file) noexcept
{
    CORVLCfg root;
    return OpenRoot(root) && OpenOwn(file, root, kUsersName);
}

bool OpenPresentUsers(CORVLProfile& file) noexcept
{
    ShortText name;
    wchar_t path[text::kPathCapacity];
    if (!FindName(kUsersName, name) || !folders::GetConfigurationFolder(path, std::size(path)))
    {
        return false;
    }
    text::Append(path, L"\\");
    text::Append(path, name);
    return PathFileExistsW(path) && OpenOwn(file, name);
}

bool OpenCatalogue(CORVLCfg& file) noexcept
{
    ShortText name;
    return FindName(kCatalogueName, name) && file.Initialize(name) != 0;
}

bool OpenDisplay(CORVLProfile& file, const wchar_t* folder) noexcept
{
    ShortText name;
    return FindName(kDisplayName, name) && file.Initialize(name, folder, 0) != 0;
}

void RemoveScheme(CORVLProfile& values, int index) noexcept
{
    values.PutString(NumberedKey(kRowSection, index).Text(), nullptr, nullptr);
}

void DeleteBelow(const wchar_t* folder, const wchar_t* suffix, const wchar_t* format) noexcept
{
    // Room for more than one path: a path that is too long must fail, not name another file.
    const text::Formatted<2 * text::kPathCapacity> path(L"%s\\%s", folder, suffix);
    DeleteFileW(path.Text());
    CORVLBase::DBGOUT(format, path.Text());
}

} // namespace files
