// modules/shell32/KnownFolders.cpp
//
// Where the local application data of the running account lies, and making folders.
//
// Known differences from Windows: that is the only known folder, and follows from the account's profile, not
// from what "User Shell Folders" in its hive says; a token, which asks for another account's folders, is
// refused.

#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Environment.h"
#include "modules/kernel32/Paths.h"

#include <windows.h>

#include <shlobj.h>

using namespace simulated;

namespace
{

bool IsFolder(const std::string& path)
{
    paths::Place place;
    return paths::FindExisting(path, place) == ERROR_SUCCESS && place.IsFolder();
}

HRESULT FindFolder(int folder, HANDLE token, DWORD type, LPWSTR path)
{
    if (path == nullptr || token != nullptr || type != SHGFP_TYPE_CURRENT || folder != CSIDL_LOCAL_APPDATA)
    {
        return E_INVALIDARG;
    }
    path[0] = 0;
    const std::string found = environment::Expand(environment::HasLaterFolders()
                                                      ? "%USERPROFILE%\\AppData\\Local"
                                                      : "%USERPROFILE%\\Local Settings\\Application Data");
    if (!IsFolder(found))
    {
        return environment::HasLaterFolders() ? HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND) : S_FALSE;
    }
    return CopyToUtf16(found, path, MAX_PATH) ? S_OK : E_FAIL;
}

bool IsAbsolute(std::string_view path)
{
    return path.size() >= 3 && path[1] == ':' && (path[2] == '\\' || path[2] == '/');
}

DWORD CreateAbsolute(const std::string& path)
{
    return IsAbsolute(path) ? paths::CreateFolders(path) : static_cast<DWORD>(ERROR_BAD_PATHNAME);
}

} // namespace

SIM_API HRESULT WINAPI SHGetFolderPathW(HWND, int folder, HANDLE token, DWORD type, LPWSTR path)
{
    PlatformCall call(CallClass::Shell, "SHGetFolderPathW", SIM_CALLER);
    call.Arguments(folder, token, type);
    const HRESULT failure = call.IsRefused() ? HRESULT_FROM_WIN32(call.FaultError()) : E_FAIL;
    return call.Result<HRESULT>(failure,
                                [&]() -> Outcome<HRESULT> {
                                    return {FindFolder(folder, token, type, path), ERROR_SUCCESS};
                                });
}

SIM_API int WINAPI SHCreateDirectoryExW(HWND, LPCWSTR path, const SECURITY_ATTRIBUTES*)
{
    PlatformCall call(CallClass::Shell, "SHCreateDirectoryExW", SIM_CALLER);
    call.Arguments(path);
    return static_cast<int>(call.Status([&] { return CreateAbsolute(ToUtf8(path)); }));
}
