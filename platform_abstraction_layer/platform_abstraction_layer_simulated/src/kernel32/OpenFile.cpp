// kernel32/OpenFile.cpp
//
// Opening by disposition and share mode, and the work on an opened file.

#include "kernel32/Files.h"
#include "kernel32/Paths.h"
#include "kernel32/ShareModes.h"

#include <fileapi.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulated::files
{

namespace
{

constexpr mode_t kFileMode = 0666;
constexpr mode_t kWriteBits = 0222;
constexpr DWORD kReadRights = GENERIC_READ | GENERIC_ALL | FILE_READ_DATA;
constexpr DWORD kWriteRights = GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA;

// Natively without meaning, but harmless. What isn't here changes what a file does and is refused.
constexpr DWORD kKnownFlags = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM |
                              FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_NORMAL | FILE_FLAG_SEQUENTIAL_SCAN |
                              FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_WRITE_THROUGH;

// What a disposition does with a file that is there and with one that isn't.
struct Disposition
{
    DWORD number;
    DWORD whenThere;   ///< the error that refuses it
    DWORD whenMissing; ///< the error that refuses it
    bool empties;
    bool tellsThatThere; ///< by ERROR_ALREADY_EXISTS beside the success
};

constexpr std::array kDispositions = {
    Disposition{CREATE_NEW, ERROR_FILE_EXISTS, ERROR_SUCCESS, false, false},
    Disposition{CREATE_ALWAYS, ERROR_SUCCESS, ERROR_SUCCESS, true, true},
    Disposition{OPEN_EXISTING, ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, false, false},
    Disposition{OPEN_ALWAYS, ERROR_SUCCESS, ERROR_SUCCESS, false, true},
    Disposition{TRUNCATE_EXISTING, ERROR_SUCCESS, ERROR_FILE_NOT_FOUND, true, false},
};

const Disposition* FindDisposition(DWORD number)
{
    for (const Disposition& row : kDispositions)
    {
        if (row.number == number)
        {
            return &row;
        }
    }
    return nullptr;
}

Outcome<std::shared_ptr<File>> OpenFolder(const paths::Place& place, const OpenRequest& request)
{
    if ((request.flags & FILE_FLAG_BACKUP_SEMANTICS) == 0 || request.disposition != OPEN_EXISTING)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    const int descriptor = open(place.host.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    return {std::make_shared<File>(descriptor, request.access, true), ERROR_SUCCESS};
}

// The claims need a descriptor that can read, so a writer's is open for both.
int OpenHost(const std::string& host, DWORD access, bool create, DWORD flags)
{
    const bool writes = (access & kWriteRights) != 0;
    const mode_t mode = (flags & FILE_ATTRIBUTE_READONLY) != 0 ? kFileMode & ~kWriteBits : kFileMode;
    const int how = (writes ? O_RDWR : O_RDONLY) | (create ? O_CREAT : 0);
    return open(host.c_str(), how | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, mode);
}

} // namespace

Outcome<std::shared_ptr<File>> Open(std::string_view path, const OpenRequest& request)
{
    const Disposition* const disposition = FindDisposition(request.disposition);
    if (disposition == nullptr || (request.flags & ~kKnownFlags) != 0)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    paths::Place place;
    if (const DWORD error = paths::Find(path, place); error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    if (place.IsFolder())
    {
        return OpenFolder(place, request);
    }
    const bool isThere = place.Exists();
    if (const DWORD error = isThere ? disposition->whenThere : disposition->whenMissing;
        error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    const DWORD access = disposition->empties ? request.access | FILE_WRITE_DATA : request.access;
    if (place.IsReadOnly() && (access & kWriteRights) != 0)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    DWORD error = ERROR_SUCCESS;
    if (!isThere)
    {
        error = paths::CheckFolder(place);
    }
    else if (disposition->empties)
    {
        error = share_modes::Check(place.host, GENERIC_WRITE);
    }
    if (error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    const int descriptor = OpenHost(place.host, access, !isThere, request.flags);
    if (descriptor < 0)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    auto file = std::make_shared<File>(descriptor, request.access, false);
    error = share_modes::Claim(descriptor, request.access, request.share);
    if (error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    if (isThere && disposition->empties && ftruncate(descriptor, 0) != 0)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    const bool tells = isThere && disposition->tellsThatThere;
    return {std::move(file), static_cast<DWORD>(tells ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS)};
}

File::File(int descriptor, DWORD access, bool isFolder)
    : Object(ObjectKind::File), m_descriptor(descriptor), m_access(access), m_isFolder(isFolder)
{
}

File::~File()
{
    close(m_descriptor);
}

DWORD File::Allow(DWORD rights) const
{
    return !m_isFolder && (m_access & rights) != 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
}

DWORD File::Read(void* buffer, DWORD size, DWORD& read)
{
    if (const DWORD error = Allow(kReadRights); error != ERROR_SUCCESS)
    {
        return error;
    }
    const ssize_t got = ::read(m_descriptor, buffer, size);
    read = got < 0 ? 0 : static_cast<DWORD>(got);
    return got < 0 ? paths::ErrorOf(errno) : ERROR_SUCCESS;
}

DWORD File::Write(const void* buffer, DWORD size, DWORD& written)
{
    if (const DWORD error = Allow(kWriteRights); error != ERROR_SUCCESS)
    {
        return error;
    }
    const ssize_t put = ::write(m_descriptor, buffer, size);
    written = put < 0 ? 0 : static_cast<DWORD>(put);
    return put < 0 ? paths::ErrorOf(errno) : ERROR_SUCCESS;
}

DWORD File::Size(std::uint64_t& size) const
{
    struct stat status = {};
    if (m_isFolder || fstat(m_descriptor, &status) != 0)
    {
        return ERROR_INVALID_HANDLE;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return ERROR_SUCCESS;
}

DWORD File::Seek(std::int64_t distance, DWORD method, std::uint64_t& place)
{
    static constexpr std::array kOrigins = {SEEK_SET, SEEK_CUR, SEEK_END};
    if (method >= kOrigins.size())
    {
        return ERROR_INVALID_PARAMETER;
    }
    const off_t reached = lseek(m_descriptor, static_cast<off_t>(distance), kOrigins[method]);
    if (reached < 0)
    {
        return ERROR_NEGATIVE_SEEK;
    }
    place = static_cast<std::uint64_t>(reached);
    return ERROR_SUCCESS;
}

DWORD File::Cut()
{
    const DWORD error = Allow(kWriteRights);
    const off_t end = lseek(m_descriptor, 0, SEEK_CUR);
    if (error == ERROR_SUCCESS && ftruncate(m_descriptor, end) != 0)
    {
        return paths::ErrorOf(errno);
    }
    return error;
}

} // namespace simulated::files
