// modules/kernel32/ShareModes.cpp
//
// Six bytes far behind the end of any file stand for the claims: reads, writes and deletes that are done, and
// the three that are denied. A claim is a shared lock on its byte; whether others have it is asked for by the
// host's query for an exclusive one.

#include "modules/kernel32/ShareModes.h"

#include <winerror.h>
#include <winnt.h>

#include <fileapi.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace simulated::share_modes
{

namespace
{

constexpr off_t kClaimBytes = off_t{1} << 60;

struct Kind
{
    DWORD access; ///< the rights that make an opener one of this kind
    DWORD share;  ///< what an opener grants who doesn't deny it
    off_t done;
    off_t denied;
};

constexpr std::array kKinds = {
    Kind{GENERIC_READ | GENERIC_ALL | FILE_READ_DATA, FILE_SHARE_READ, kClaimBytes, kClaimBytes + 1},
    Kind{GENERIC_WRITE | GENERIC_ALL | FILE_WRITE_DATA | FILE_APPEND_DATA, FILE_SHARE_WRITE, kClaimBytes + 2,
         kClaimBytes + 3},
    Kind{GENERIC_ALL | DELETE, FILE_SHARE_DELETE, kClaimBytes + 4, kClaimBytes + 5},
};

constexpr bool IsAccessed(const Kind& kind, DWORD access)
{
    return (access & kind.access) != 0;
}

// An opener that neither reads nor writes nor deletes denies nothing.
constexpr bool IsDenied(const Kind& kind, DWORD access, DWORD share)
{
    const bool isClaimant = std::any_of(kKinds.begin(), kKinds.end(),
                                        [access](const Kind& any) { return IsAccessed(any, access); });
    return isClaimant && (share & kind.share) == 0;
}

struct flock ByteLock(short type, off_t place)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return lock;
}

bool IsTaken(int descriptor, off_t place)
{
    struct flock lock = ByteLock(F_WRLCK, place);
    return fcntl(descriptor, F_OFD_GETLK, &lock) == 0 && lock.l_type != F_UNLCK;
}

void Take(int descriptor, off_t place)
{
    struct flock lock = ByteLock(F_RDLCK, place);
    fcntl(descriptor, F_OFD_SETLK, &lock);
}

bool IsRefused(int descriptor, DWORD access, DWORD share)
{
    return std::any_of(kKinds.begin(), kKinds.end(),
                       [=](const Kind& kind)
                       {
                           return (IsAccessed(kind, access) && IsTaken(descriptor, kind.denied)) ||
                                  (IsDenied(kind, access, share) && IsTaken(descriptor, kind.done));
                       });
}

} // namespace

DWORD Claim(int descriptor, DWORD access, DWORD share)
{
    // Between looking and taking nobody else may do the same.
    flock(descriptor, LOCK_EX);
    const bool refused = IsRefused(descriptor, access, share);
    for (const Kind& kind : kKinds)
    {
        if (!refused && IsAccessed(kind, access))
        {
            Take(descriptor, kind.done);
        }
        if (!refused && IsDenied(kind, access, share))
        {
            Take(descriptor, kind.denied);
        }
    }
    flock(descriptor, LOCK_UN);
    return refused ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

DWORD Check(const std::string& host, DWORD access)
{
    const int descriptor = open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (descriptor < 0)
    {
        return ERROR_SUCCESS;
    }
    const DWORD error = Check(descriptor, access);
    close(descriptor);
    return error;
}

DWORD Check(int descriptor, DWORD access)
{
    const bool refused =
        IsRefused(descriptor, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    return refused ? ERROR_SHARING_VIOLATION : ERROR_SUCCESS;
}

} // namespace simulated::share_modes
