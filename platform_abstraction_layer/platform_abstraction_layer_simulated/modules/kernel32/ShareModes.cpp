// modules/kernel32/ShareModes.cpp
//
// Three bytes far behind the end of any file stand for what is denied: reading, writing and deleting. A claim
// is a shared lock on its byte; whether others have it is asked for by the host's query for an exclusive one.

#include "modules/kernel32/ShareModes.h"

#include "base/Descriptor.h"

#include <winerror.h>
#include <winnt.h>

#include <fcntl.h>

namespace simulated::share_modes
{

namespace
{

struct Kind
{
    DWORD access; ///< the right that makes an opener one of this kind
    DWORD share;  ///< what an opener grants who doesn't deny it
    off_t place;
};

constexpr off_t kClaimBytes = off_t{1} << 60;
constexpr Kind kKinds[] = {{GENERIC_READ, FILE_SHARE_READ, kClaimBytes},
                           {GENERIC_WRITE, FILE_SHARE_WRITE, kClaimBytes + 1},
                           {DELETE, FILE_SHARE_DELETE, kClaimBytes + 2}};

// What `command` leaves of a lock of `type` on the byte at `place`.
short Lock(int descriptor, int command, short type, off_t place)
{
    struct flock lock = {};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return fcntl(descriptor, command, &lock) == 0 ? lock.l_type : static_cast<short>(F_UNLCK);
}

} // namespace

void Claim(int descriptor, DWORD share)
{
    for (const Kind& kind : kKinds)
    {
        if ((share & kind.share) == 0)
        {
            Lock(descriptor, F_OFD_SETLK, F_RDLCK, kind.place);
        }
    }
}

DWORD Check(const std::string& host, DWORD access)
{
    const Descriptor file(open(host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    return file.IsOpen() ? Check(file.Get(), access) : ERROR_SUCCESS;
}

DWORD Check(int descriptor, DWORD access)
{
    for (const Kind& kind : kKinds)
    {
        if ((access & kind.access) != 0 && Lock(descriptor, F_OFD_GETLK, F_WRLCK, kind.place) != F_UNLCK)
        {
            return ERROR_SHARING_VIOLATION;
        }
    }
    return ERROR_SUCCESS;
}

} // namespace simulated::share_modes
