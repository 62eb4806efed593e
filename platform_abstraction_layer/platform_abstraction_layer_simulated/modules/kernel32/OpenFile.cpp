// modules/kernel32/OpenFile.cpp
//
// Opening by disposition and share mode, and the work on an opened file.

#include "modules/kernel32/Files.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <fileapi.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulated::files
{

namespace
{

constexpr mode_t kFileMode = 0666;
constexpr DWORD kReadRights = GENERIC_READ | GENERIC_ALL | FILE_READ_DATA;
constexpr DWORD kWriteRights = GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA;

// The claims need a descriptor that can read, so a writer's is open for both.
int OpenHost(const std::string& host, DWORD access, bool create)
{
    const bool writes = (access & kWriteRights) != 0;
    const int how = (writes ? O_RDWR : O_RDONLY) | (create ? O_CREAT : 0);
    return open(host.c_str(), how | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, kFileMode);
}

} // namespace

Outcome<std::shared_ptr<File>> Open(std::string_view path, const OpenRequest& request)
{
    const bool empties = request.disposition == CREATE_ALWAYS;
    if ((!empties && request.disposition != OPEN_EXISTING) ||
        (request.flags & ~DWORD{FILE_ATTRIBUTE_NORMAL}) != 0)
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
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    const bool isThere = place.Exists();
    if (!isThere && !empties)
    {
        return {nullptr, ERROR_FILE_NOT_FOUND};
    }
    const DWORD access = empties ? request.access | FILE_WRITE_DATA : request.access;
    if (place.IsReadOnly() && (access & kWriteRights) != 0)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    DWORD error = ERROR_SUCCESS;
    if (!isThere)
    {
        error = paths::CheckFolder(place);
    }
    else if (empties)
    {
        error = share_modes::Check(place.host, GENERIC_WRITE);
    }
    if (error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    const int descriptor = OpenHost(place.host, access, !isThere);
    if (descriptor < 0)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    auto file = std::make_shared<File>(descriptor, request.access);
    error = share_modes::Claim(descriptor, request.access, request.share);
    if (error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    if (isThere && empties && ftruncate(descriptor, 0) != 0)
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    return {std::move(file), static_cast<DWORD>(isThere && empties ? ERROR_ALREADY_EXISTS : ERROR_SUCCESS)};
}

File::File(int descriptor, DWORD access)
    : Object(ObjectKind::File), m_descriptor(descriptor), m_access(access)
{
}

File::~File()
{
    close(m_descriptor);
}

DWORD File::Allow(DWORD rights) const
{
    return (m_access & rights) != 0 ? ERROR_SUCCESS : ERROR_ACCESS_DENIED;
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
    if (fstat(m_descriptor, &status) != 0)
    {
        return ERROR_INVALID_HANDLE;
    }
    size = static_cast<std::uint64_t>(status.st_size);
    return ERROR_SUCCESS;
}

} // namespace simulated::files
