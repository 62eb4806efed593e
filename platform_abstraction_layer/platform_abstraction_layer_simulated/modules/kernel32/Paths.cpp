// modules/kernel32/Paths.cpp
//
// Splitting, checking and looking up paths.

#include "modules/kernel32/Paths.h"

#include "base/Text.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"

#include <winerror.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <sys/stat.h>
#include <vector>

namespace simulated::paths
{

namespace
{

constexpr std::string_view kSeparators = "/\\";
constexpr std::string_view kForbidden = "<>:\"|?*";
constexpr std::string_view kLongPrefix = "\\\\?\\";
constexpr std::size_t kLongestName = 255;
constexpr mode_t kWriteBits = S_IWUSR | S_IWGRP | S_IWOTH;

struct DosName
{
    std::string_view name;
    bool isNumbered;
};

constexpr std::array kDosNames = {
    DosName{"CON", false}, DosName{"PRN", false}, DosName{"AUX", false},
    DosName{"NUL", false}, DosName{"COM", true},  DosName{"LPT", true},
};

// A path after its text has been understood.
struct Parts
{
    char drive;
    std::vector<std::string_view> names;
    bool endsInSeparator;
};

bool IsSeparator(char character)
{
    return kSeparators.find(character) != std::string_view::npos;
}

bool IsDosName(std::string_view name)
{
    const std::string_view stem = name.substr(0, name.find('.'));
    return std::any_of(kDosNames.begin(), kDosNames.end(),
                       [stem](const DosName& dos)
                       {
                           const bool fits = dos.isNumbered ? stem.size() == dos.name.size() + 1 &&
                                                                  stem.back() >= '1' && stem.back() <= '9'
                                                            : stem.size() == dos.name.size();
                           return fits && EqualIgnoringCase(stem.substr(0, dos.name.size()), dos.name);
                       });
}

DWORD CheckName(std::string_view name)
{
    const bool isForbidden = std::any_of(name.begin(), name.end(),
                                         [](char character)
                                         {
                                             return static_cast<unsigned char>(character) < 0x20 ||
                                                    kForbidden.find(character) != std::string_view::npos;
                                         });
    if (isForbidden || IsDosName(name) || IsHousekeepingName(name))
    {
        return ERROR_INVALID_NAME;
    }
    return name.size() > kLongestName ? ERROR_FILENAME_EXCED_RANGE : ERROR_SUCCESS;
}

// Windows drops dots and blanks at the end of a name.
std::string_view TrimEnd(std::string_view name)
{
    const std::size_t last = name.find_last_not_of(". ");
    return last == std::string_view::npos ? std::string_view() : name.substr(0, last + 1);
}

DWORD AddName(std::string_view name, std::vector<std::string_view>& names)
{
    if (name.empty() || name == ".")
    {
        return ERROR_SUCCESS;
    }
    if (name == "..")
    {
        if (!names.empty())
        {
            names.pop_back();
        }
        return ERROR_SUCCESS;
    }
    const std::string_view trimmed = TrimEnd(name);
    if (trimmed.empty())
    {
        return ERROR_SUCCESS;
    }
    names.push_back(trimmed);
    return CheckName(trimmed);
}

DWORD Split(std::string_view path, Parts& parts)
{
    if (path.starts_with(kLongPrefix))
    {
        path.remove_prefix(kLongPrefix.size());
    }
    if (path.empty())
    {
        return ERROR_PATH_NOT_FOUND;
    }
    parts.drive = 'C';
    if (path.size() >= 2 && path[1] == ':')
    {
        parts.drive = FoldCase(path.substr(0, 1)).front();
        path.remove_prefix(2);
    }
    else if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1]))
    {
        return ERROR_PATH_NOT_FOUND; // another machine
    }
    parts.endsInSeparator = !path.empty() && IsSeparator(path.back());
    for (std::size_t begin = 0; begin <= path.size();)
    {
        const std::size_t end = std::min(path.find_first_of(kSeparators, begin), path.size());
        if (const DWORD error = AddName(path.substr(begin, end - begin), parts.names); error != ERROR_SUCCESS)
        {
            return error;
        }
        begin = end + 1;
    }
    return parts.drive >= 'A' && parts.drive <= 'Z' ? ERROR_SUCCESS : ERROR_PATH_NOT_FOUND;
}

mode_t ModeOf(const std::string& host)
{
    struct stat status = {};
    return stat(host.c_str(), &status) == 0 ? status.st_mode : 0;
}

// The spelling under which `name` exists in `folder`.
std::optional<std::string> FindSpelling(const std::string& folder, std::string_view name)
{
    std::error_code error;
    const std::string wanted = FoldCase(name);
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
    {
        std::string spelling = entry->path().filename().string();
        if (FoldCase(spelling) == wanted)
        {
            return spelling;
        }
    }
    return std::nullopt;
}

// One name further: the place in the spelling asked for, or in the one that exists.
void Descend(Place& place, std::string_view name)
{
    const std::string folder = place.host;
    place.host = folder + '/' + std::string(name);
    place.mode = ModeOf(place.host);
    if (place.Exists())
    {
        return;
    }
    if (const std::optional<std::string> spelling = FindSpelling(folder, name))
    {
        place.host = folder + '/' + *spelling;
        place.mode = ModeOf(place.host);
    }
}

std::string WholePath(const std::string& drive, const Parts& parts)
{
    std::string host = drive;
    for (const std::string_view name : parts.names)
    {
        host += '/';
        host += name;
    }
    return host;
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

DWORD Find(std::string_view path, Place& place)
{
    Parts parts = {};
    if (const DWORD error = Split(path, parts); error != ERROR_SUCCESS)
    {
        return error;
    }
    const std::string drive = Machine::PathOf(std::string("drives/") + parts.drive);
    place.host = WholePath(drive, parts);
    place.mode = ModeOf(place.host);
    if (!place.Exists())
    {
        place.host = drive;
        place.mode = ModeOf(drive);
        for (const std::string_view name : parts.names)
        {
            if (!place.IsFolder())
            {
                return ERROR_PATH_NOT_FOUND;
            }
            Descend(place, name);
        }
        if (!place.Exists() && parts.names.empty())
        {
            return ERROR_PATH_NOT_FOUND; // no such drive
        }
    }
    const bool isFile = place.Exists() && !place.IsFolder();
    return isFile && parts.endsInSeparator ? ERROR_INVALID_NAME : ERROR_SUCCESS;
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

DWORD ErrorOf(int number) noexcept
{
    struct Row
    {
        int number;
        DWORD error;
    };
    static constexpr std::array kRows = {
        Row{ENOENT, ERROR_FILE_NOT_FOUND},    Row{ENOTDIR, ERROR_PATH_NOT_FOUND},
        Row{ELOOP, ERROR_PATH_NOT_FOUND},     Row{EACCES, ERROR_ACCESS_DENIED},
        Row{EPERM, ERROR_ACCESS_DENIED},      Row{EROFS, ERROR_ACCESS_DENIED},
        Row{EISDIR, ERROR_ACCESS_DENIED},     Row{EEXIST, ERROR_FILE_EXISTS},
        Row{ENOTEMPTY, ERROR_DIR_NOT_EMPTY},  Row{ENOSPC, ERROR_DISK_FULL},
        Row{EDQUOT, ERROR_DISK_FULL},         Row{ENAMETOOLONG, ERROR_FILENAME_EXCED_RANGE},
        Row{ENOMEM, ERROR_NOT_ENOUGH_MEMORY}, Row{EMFILE, ERROR_NOT_ENOUGH_MEMORY},
        Row{ENFILE, ERROR_NOT_ENOUGH_MEMORY},
    };
    const auto* const row = std::find_if(
        kRows.begin(), kRows.end(), [number](const Row& candidate) { return candidate.number == number; });
    return row == kRows.end() ? static_cast<DWORD>(ERROR_GEN_FAILURE) : row->error;
}

} // namespace simulated::paths
