// base/WholeFile.cpp
//
// Whole files: read, replace by rename, lock.

#include "base/WholeFile.h"

#include "base/ChangeCount.h"
#include "base/Text.h"

#include <cerrno>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

namespace simulated
{

namespace
{

constexpr std::string_view kHousekeepingBegin = ".~";
constexpr std::string_view kLockEnd = ".lock";
constexpr std::string_view kSideEnd = ".new";
constexpr mode_t kNewFileMode = 0666;

// "folder/name" becomes "folder/.~name.lock". The name is folded: spellings of one name share a lock.
std::string Beside(const std::string& path, std::string_view end)
{
    const std::size_t slash = path.rfind('/');
    const std::size_t nameBegin = slash == std::string::npos ? 0 : slash + 1;
    std::string beside = path.substr(0, nameBegin);
    beside += kHousekeepingBegin;
    beside += FoldCase(std::string_view(path).substr(nameBegin));
    beside += end;
    return beside;
}

bool WriteAll(int file, std::string_view bytes)
{
    while (!bytes.empty())
    {
        const ssize_t written = write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
        {
            return false;
        }
        bytes.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
    return true;
}

// Readers know a changed file by its times, and the file system's own clock is coarser than two writes.
void StampExactly(int file)
{
    timespec now[2] = {};
    clock_gettime(CLOCK_REALTIME, &now[0]);
    now[1] = now[0];
    futimens(file, now);
}

int CreateSide(const std::string& side)
{
    return open(side.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, kNewFileMode);
}

// What a killed writer left may still be read by someone under its earlier name, so it isn't used again.
bool WriteSide(const std::string& side, std::string_view bytes, std::optional<mode_t> mode)
{
    const int first = CreateSide(side);
    const bool isLeft = first < 0 && errno == EEXIST && unlink(side.c_str()) == 0;
    const Descriptor file(isLeft ? CreateSide(side) : first);
    if (!file.IsOpen() || !WriteAll(file.Get(), bytes))
    {
        return false;
    }
    StampExactly(file.Get());
    return !mode || fchmod(file.Get(), *mode) == 0;
}

// Gives `path` the content of `side`. Where there is a file already the two swap names and the old one
// is removed: a plain rename over it makes some file systems wait for the disk.
bool TakePlace(const std::string& side, const std::string& path)
{
    if (renameat2(AT_FDCWD, side.c_str(), AT_FDCWD, path.c_str(), RENAME_EXCHANGE) == 0)
    {
        unlink(side.c_str());
        return true;
    }
    return std::rename(side.c_str(), path.c_str()) == 0;
}

} // namespace

FileState StateOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
    {
        return {.path = path};
    }
    return {path,           status.st_dev,         status.st_ino,
            status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

std::optional<std::string> ReadWhole(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return !file.IsOpen() ? std::nullopt : ReadWhole(file.Get());
}

std::optional<std::string> ReadWhole(int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) != 0)
    {
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode))
    {
        errno = EISDIR;
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size())
    {
        const ssize_t got = read(descriptor, bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno != EINTR)
        {
            return std::nullopt;
        }
        if (got == 0)
        {
            break;
        }
        filled += got < 0 ? 0 : static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

bool WriteWhole(const std::string& path, std::string_view bytes)
{
    struct stat status = {};
    const bool isThere = stat(path.c_str(), &status) == 0;
    const std::optional<mode_t> mode = isThere ? std::optional<mode_t>(status.st_mode & 0777) : std::nullopt;
    const std::string side = Beside(path, kSideEnd);
    if (!WriteSide(side, bytes, mode) || !TakePlace(side, path))
    {
        const int kept = errno;
        unlink(side.c_str());
        errno = kept;
        return false;
    }
    ChangeCount::Announce();
    return true;
}

FileLock::FileLock(const std::string& path, Kind kind)
    : m_file(open(Beside(path, kLockEnd).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666))
{
    const int operation = kind == Kind::Shared     ? LOCK_SH
                          : kind == Kind::AloneNow ? LOCK_EX | LOCK_NB
                                                   : LOCK_EX;
    while (m_file.IsOpen() && flock(m_file.Get(), operation) != 0)
    {
        if (errno != EINTR)
        {
            m_file = Descriptor();
        }
    }
}

bool IsHousekeepingName(std::string_view name) noexcept
{
    return name.starts_with(kHousekeepingBegin) && (name.ends_with(kLockEnd) || name.ends_with(kSideEnd));
}

} // namespace simulated
