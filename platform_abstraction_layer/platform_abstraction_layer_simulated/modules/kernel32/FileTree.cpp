// modules/kernel32/FileTree.cpp
//
// What is done to files and folders by name.

#include "base/WholeFile.h"
#include "modules/kernel32/Files.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <fileapi.h>

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace simulated::files
{

namespace
{

constexpr mode_t kFolderMode = 0777;

// A folder that holds nothing but locks and remains of killed writers is empty to the machine.
void RemoveHousekeeping(const std::string& host)
{
    std::error_code error;
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(host, error))
    {
        if (!IsHousekeepingName(entry.path().filename().string()))
        {
            return;
        }
    }
    for (const std::filesystem::directory_entry& entry : std::filesystem::directory_iterator(host, error))
    {
        unlink(entry.path().c_str());
    }
}

bool IsLink(const std::string& host)
{
    struct stat status = {};
    return lstat(host.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

DWORD CreateFolder(std::string_view path)
{
    paths::Place place;
    if (const DWORD error = paths::Find(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (place.Exists())
    {
        return ERROR_ALREADY_EXISTS;
    }
    if (mkdir(place.host.c_str(), kFolderMode) != 0)
    {
        return errno == EEXIST ? ERROR_ALREADY_EXISTS : paths::ErrorOf(errno);
    }
    return ERROR_SUCCESS;
}

} // namespace

DWORD Delete(std::string_view path)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (place.IsFolder() || place.IsReadOnly())
    {
        return ERROR_ACCESS_DENIED;
    }
    DWORD error = paths::CheckFolder(place);
    error = error != ERROR_SUCCESS ? error : share_modes::Check(place.host, DELETE);
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    return unlink(place.host.c_str()) == 0 ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

DWORD RemoveFolder(std::string_view path)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    if (!place.IsFolder())
    {
        return ERROR_DIRECTORY;
    }
    if (IsLink(place.host))
    {
        return unlink(place.host.c_str()) == 0 ? ERROR_SUCCESS : paths::ErrorOf(errno);
    }
    RemoveHousekeeping(place.host);
    return rmdir(place.host.c_str()) == 0 ? ERROR_SUCCESS : paths::ErrorOf(errno);
}

DWORD Attributes(std::string_view path, DWORD& attributes)
{
    paths::Place place;
    if (const DWORD error = paths::FindExisting(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    attributes = place.IsFolder() ? FILE_ATTRIBUTE_DIRECTORY : FILE_ATTRIBUTE_ARCHIVE;
    attributes |= place.IsReadOnly() ? FILE_ATTRIBUTE_READONLY : 0;
    return ERROR_SUCCESS;
}

DWORD CreateFolders(std::string_view path)
{
    // From the longest part that exists down to the whole.
    const DWORD made = CreateFolder(path);
    const std::size_t end = path.find_last_not_of("/\\");
    const std::size_t separator = end == std::string_view::npos ? end : path.find_last_of("/\\", end);
    if (made != ERROR_PATH_NOT_FOUND || separator == std::string_view::npos || separator == 0)
    {
        return made;
    }
    const DWORD above = CreateFolders(path.substr(0, separator));
    return above == ERROR_SUCCESS || above == ERROR_ALREADY_EXISTS ? CreateFolder(path) : above;
}

} // namespace simulated::files
