// base/WholeFile.h
//
// Files of the host that are read whole and replaced whole, and the locks that keep writers apart. Paths are
// the host's.
#pragma once

#include "base/Descriptor.h"

#include <windef.h>

#include <ctime>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace simulated
{

/// What identifies a state of a file.
struct FileState
{
    std::string path;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = -1; ///< of no file
    std::time_t changed = 0;
    long changedNanoseconds = 0;

    bool operator==(const FileState&) const = default;
};
FileState StateOf(const std::string& path);

/// The content of a file, or nothing when it can't be opened or read (`errno` says why).
std::optional<std::string> ReadWhole(const std::string& path);
std::optional<std::string> ReadWhole(int descriptor);

/// Replaces a file or makes it: the bytes are written to a file beside it, which then takes its name, so that
/// a reader or a crash meets the old content or the new. The mode of an existing file is kept. False, with
/// `errno` set, when that can't be done. Writers of one file must hold its `FileLock`.
[[nodiscard]] bool WriteWhole(const std::string& path, std::string_view bytes);

/// The lock of a file's writers: a file of its own beside it, since the written one is replaced by
/// another. Excludes threads as well as processes, and ends with its holder, killed or not.
class FileLock
{
public:
    enum class Kind
    {
        Alone,
        AloneNow, ///< doesn't wait for others
        Shared
    };

    /// Waits for the lock of the file at `path`, which needn't exist; its folder must.
    explicit FileLock(const std::string& path, Kind kind = Kind::Alone);

    /// False when the lock file can't be made, or another has what was wanted now; `errno` says why.
    bool IsHeld() const noexcept
    {
        return m_file.IsOpen();
    }

private:
    Descriptor m_file;
};

/// True for the names of lock files and of files that are being written, which are no part of the machine.
bool IsHousekeepingName(std::string_view name) noexcept;

} // namespace simulated
