// shell32/KnownFolders.cpp
//
// Where the folders of the machine and of the running account lie, and making folders.
//
// Known differences from Windows: the folders follow from the account's profile, not from what "User Shell
// Folders" in its hive says; a token, which asks for another account's folders, is refused.

#include "kernel32/Environment.h"
#include "kernel32/Files.h"
#include "kernel32/Paths.h"

#include "notebook/PlatformCall.h"
#include "notebook/Text.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <iterator>

using namespace simulated;

namespace
{

struct KnownFolder
{
    int number;
    const char* earlierPath;
    const char* laterPath;
};

constexpr KnownFolder kFolders[] = {
    {CSIDL_PERSONAL, "%USERPROFILE%\\My Documents", "%USERPROFILE%\\Documents"},
    {CSIDL_DESKTOPDIRECTORY, "%USERPROFILE%\\Desktop", "%USERPROFILE%\\Desktop"},
    {CSIDL_APPDATA, "%USERPROFILE%\\Application Data", "%USERPROFILE%\\AppData\\Roaming"},
    {CSIDL_LOCAL_APPDATA, "%USERPROFILE%\\Local Settings\\Application Data", "%USERPROFILE%\\AppData\\Local"},
    {CSIDL_PROFILE, "%USERPROFILE%", "%USERPROFILE%"},
    {CSIDL_COMMON_APPDATA, "%ALLUSERSPROFILE%\\Application Data", "%ALLUSERSPROFILE%"},
    {CSIDL_WINDOWS, "%SystemRoot%", "%SystemRoot%"},
    {CSIDL_SYSTEM, "%SystemRoot%\\system32", "%SystemRoot%\\system32"},
    {CSIDL_PROGRAM_FILES, "%ProgramFiles%", "%ProgramFiles%"},
};

bool IsFolder(const std::string& path)
{
    paths::Place place;
    return paths::FindExisting(path, place) == ERROR_SUCCESS && place.IsFolder();
}

HRESULT FindFolder(int number, bool create, HANDLE token, DWORD type, LPWSTR path)
{
    const auto* const row =
        std::find_if(std::begin(kFolders), std::end(kFolders),
                     [number](const KnownFolder& folder) { return folder.number == number; });
    if (path == nullptr || token != nullptr || type > SHGFP_TYPE_DEFAULT || row == std::end(kFolders))
    {
        return E_INVALIDARG;
    }
    path[0] = 0;
    const std::string found =
        environment::Expand(environment::HasLaterFolders() ? row->laterPath : row->earlierPath);
    if (create)
    {
        const DWORD error = files::CreateFolders(found);
        if (error != ERROR_SUCCESS && error != ERROR_ALREADY_EXISTS)
        {
            return HRESULT_FROM_WIN32(error);
        }
    }
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
    return IsAbsolute(path) ? files::CreateFolders(path) : static_cast<DWORD>(ERROR_BAD_PATHNAME);
}

} // namespace

SIM_API HRESULT WINAPI SHGetFolderPathW(HWND, int folder, HANDLE token, DWORD type, LPWSTR path)
{
    PlatformCall call(CallClass::Shell, "SHGetFolderPathW", SIM_CALLER);
    call.Arguments(folder, token, type);
    const HRESULT failure = call.IsRefused() ? HRESULT_FROM_WIN32(call.FaultError()) : E_FAIL;
    return call.Result<HRESULT>(failure,
                                [&]() -> Outcome<HRESULT>
                                {
                                    const bool create = (folder & CSIDL_FLAG_CREATE) != 0;
                                    const int number = folder & ~CSIDL_FLAG_CREATE;
                                    return {FindFolder(number, create, token, type, path), ERROR_SUCCESS};
                                });
}

SIM_API int WINAPI SHCreateDirectoryExW(HWND, LPCWSTR path, const SECURITY_ATTRIBUTES*)
{
    PlatformCall call(CallClass::Shell, "SHCreateDirectoryExW", SIM_CALLER);
    call.Arguments(path);
    return static_cast<int>(call.Status([&] { return CreateAbsolute(ToUtf8(path)); }));
}
