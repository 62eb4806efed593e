// modules/kernel32/Paths.cpp
//
// Splitting, checking and looking up paths.

#include "modules/kernel32/Paths.h"

#include "base/PlatformCall.h"
#include "base/Remembered.h"
#include "base/Text.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"

#include <winerror.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <sys/stat.h>
#include <vector>

namespace simulated::paths
{

namespace
{

constexpr std::string_view kSeparators = "/\\";
constexpr std::string_view kForbidden = "<>:\"|?*";
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;
constexpr mode_t kFolderMode = 0777;

constexpr std::string_view kDosNames[] = {"CON", "PRN", "AUX", "NUL"};
constexpr std::string_view kNumberedDosNames[] = {"COM", "LPT"};

// A path after its text has been understood.
struct Parts
{
    char drive = 'C';
    std::vector<std::string_view> names;
};

bool IsDosName(std::string_view name)
{
    const std::string stem = FoldCase(name.substr(0, name.find('.')));
    const auto isIn = [&](const auto& names)
    { return std::find(std::begin(names), std::end(names), stem.substr(0, 3)) != std::end(names); };
    return stem.size() == 3 ? isIn(kDosNames)
                            : stem.size() == 4 && stem[3] >= '1' && stem[3] <= '9' && isIn(kNumberedDosNames);
}

bool IsName(std::string_view name)
{
    return std::none_of(name.begin(), name.end(),
                        [](char character) { return static_cast<unsigned char>(character) < 0x20; }) &&
           name.find_first_of(kForbidden) == std::string_view::npos && !IsDosName(name) &&
           !IsHousekeepingName(name);
}

DWORD Split(std::string_view path, Parts& parts)
{
    if (path.empty() || path.starts_with("\\\\")) // another machine
    {
        return ERROR_PATH_NOT_FOUND;
    }
    if (path.size() >= 2 && path[1] == ':')
    {
        parts.drive = FoldCase(path.substr(0, 1)).front();
        path.remove_prefix(2);
    }
    while (!path.empty())
    {
        const std::size_t end = std::min(path.find_first_of(kSeparators), path.size());
        const std::string_view asked = path.substr(0, end);
        path.remove_prefix(std::min(end + 1, path.size()));
        // Windows drops dots and blanks at the end of a name.
        const std::string_view name = asked.substr(0, asked.find_last_not_of(". ") + 1);
        if (asked == ".." && !parts.names.empty())
        {
            parts.names.pop_back();
        }
        if (!name.empty())
        {
            parts.names.push_back(name);
        }
        if (!IsName(name))
        {
            return ERROR_INVALID_NAME;
        }
    }
    return parts.drive >= 'A' && parts.drive <= 'Z' ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

mode_t ModeOf(const std::string& host)
{
    struct stat status = {};
    return stat(host.c_str(), &status) == 0 ? status.st_mode : 0;
}

// The place of `name` in a folder, in the spelling that exists there or else in the one asked for.
Place Descend(const std::string& folder, std::string_view name)
{
    Place place;
    place.host = folder + '/' + std::string(name);
    place.mode = ModeOf(place.host);
    if (place.Exists())
    {
        return place;
    }
    std::error_code ignored;
    const std::string wanted = FoldCase(name);
    for (const auto& entry : std::filesystem::directory_iterator(folder, ignored))
    {
        if (FoldCase(entry.path().filename().string()) == wanted)
        {
            return {entry.path().string(), ModeOf(entry.path().string())};
        }
    }
    return place;
}

DWORD CreateFolder(std::string_view path)
{
    Place place;
    if (const DWORD error = Find(path, place); error != ERROR_SUCCESS)
    {
        return error;
    }
    const bool isMade = !place.Exists() && mkdir(place.host.c_str(), kFolderMode) == 0;
    if (isMade)
    {
        ChangeCount::Announce();
        return ERROR_SUCCESS;
    }
    return place.Exists() || errno == EEXIST ? ERROR_ALREADY_EXISTS : ErrorOf(errno);
}

} // namespace

bool Place::Exists() const noexcept
{
    return mode != 0;
}

bool Place::IsFolder() const noexcept
{
    return S_ISDIR(mode);
}

bool Place::IsReadOnly() const noexcept
{
    return Exists() && !IsFolder() && (mode & kWriteBits) == 0;
}

DWORD FindAnew(std::string_view path, Place& place)
{
    Parts parts;
    if (const DWORD error = Split(path, parts); error != ERROR_SUCCESS)
    {
        return error;
    }
    const std::string drive = Machine::PathOf(std::string("drives/") + parts.drive);
    place.host = drive;
    for (const std::string_view name : parts.names)
    {
        place.host += '/';
        place.host += name;
    }
    // Most paths are asked for in the spelling that exists.
    place.mode = ModeOf(place.host);
    if (place.Exists())
    {
        return ERROR_SUCCESS;
    }
    place = {drive, ModeOf(drive)};
    for (const std::string_view name : parts.names)
    {
        if (!place.IsFolder())
        {
            return ERROR_PATH_NOT_FOUND;
        }
        place = Descend(place.host, name);
    }
    return parts.names.empty() ? ERROR_PATH_NOT_FOUND : ERROR_SUCCESS; // no such drive
}

DWORD Find(std::string_view path, Place& place)
{
    static auto& places = *new Remembered<Outcome<Place>>;
    Outcome<Place> found = places.Find(std::string(path),
                                       [path]
                                       {
                                           Outcome<Place> outcome;
                                           outcome.error = FindAnew(path, outcome.value);
                                           return outcome;
                                       });
    place = std::move(found.value);
    return found.error;
}

DWORD FindExisting(std::string_view path, Place& place)
{
    const DWORD error = Find(path, place);
    return error == ERROR_SUCCESS && !place.Exists() ? ERROR_FILE_NOT_FOUND : error;
}

DWORD CheckFolder(const Place& place)
{
    const mode_t mode = ModeOf(std::filesystem::path(place.host).parent_path().string());
    return (mode & kWriteBits) != 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

DWORD CreateFolders(std::string_view path)
{
    // From the longest part that exists down to the whole.
    const DWORD made = CreateFolder(path);
    const std::size_t end = path.find_last_not_of(kSeparators);
    const std::size_t separator = end == std::string_view::npos ? end : path.find_last_of(kSeparators, end);
    if (made != ERROR_PATH_NOT_FOUND || separator == std::string_view::npos || separator == 0)
    {
        return made;
    }
    const DWORD above = CreateFolders(path.substr(0, separator));
    return above == ERROR_SUCCESS || above == ERROR_ALREADY_EXISTS ? CreateFolder(path) : above;
}

DWORD ErrorOf(int number) noexcept
{
    switch (number)
    {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case ENOSPC:
        return ERROR_DISK_FULL;
    default:
        return ERROR_ACCESS_DENIED;
    }
}

} // namespace simulated::paths
