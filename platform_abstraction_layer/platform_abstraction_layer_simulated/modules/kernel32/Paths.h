// modules/kernel32/Paths.h
//
// From a path of the simulated machine to the file of the host behind it. Drive X is the folder "drives/X" of
// the notebook; names ignore case, "/" and "\" are alike, doubled ones count once, "." and ".." are resolved
// before anything is looked up and never leave the drive. A relative symbolic link in a drive is a folder's
// second name.
//
// Known differences from Windows: the current folder is always the root of drive C; names of DOS devices
// ("con", "nul") and of other machines aren't served.
#pragma once

#include <windef.h>

#include <string>
#include <string_view>
#include <sys/types.h>

namespace simulated::paths
{

/// A place on a drive, whose folder exists.
struct Place
{
    std::string host; ///< the host's path, in the spelling that exists, or as asked for when nothing does
    mode_t mode = 0;  ///< of the host's file, 0 when there is none

    bool Exists() const noexcept;
    bool IsFolder() const noexcept;

    /// By the mode alone: the host may let its superuser write.
    bool IsReadOnly() const noexcept;
};

/// Finds `path` (UTF-8). 0 when its folder exists, whether there is something of the last name or not. Else
/// ERROR_PATH_NOT_FOUND, or ERROR_INVALID_NAME for a name that can't be.
DWORD Find(std::string_view path, Place& place);

/// `Find` for who is about to write: nothing that was found before is trusted.
DWORD FindAnew(std::string_view path, Place& place);

/// `Find` for something that must exist: ERROR_FILE_NOT_FOUND otherwise.
DWORD FindExisting(std::string_view path, Place& place);

/// ERROR_ACCESS_DENIED when the folder that `place` lies in has a mode in which nothing can be made or
/// removed.
DWORD CheckFolder(const Place& place);

/// Makes a folder and what is missing above it. ERROR_ALREADY_EXISTS when it was there.
DWORD CreateFolders(std::string_view path);

/// The error number for `errno` after a call on a file.
DWORD ErrorOf(int number) noexcept;

} // namespace simulated::paths
