// modules/kernel32/Devices.h
//
// Devices behind CreateFileW and DeviceIoControl. A folder that implements
// one registers an opener with one object at namespace scope:
//
//     const devices::Registration kRegistration(&OpenKernelDriver);
//
// CreateFileW asks `Open` for the paths that begin with "\\.\" or "\\?\" before it looks at files.
#pragma once

#include "base/HandleTable.h"
#include "base/PlatformCall.h"

#include <memory>
#include <string_view>

namespace simulated
{

/// An opened device.
class Device : public Object
{
public:
    Device() : Object(ObjectKind::Device)
    {
    }

    /// One I/O control. `in` and `out` don't overlap and hold `inSize` and `outSize` bytes; null when the
    /// size is 0. Sets `returned`, at most `outSize`, to the bytes that go back to the caller. Returns an
    /// error number; nothing goes back then. Several threads may be in here at once.
    virtual DWORD Control(DWORD code, const void* in, DWORD inSize, void* out, DWORD outSize,
                          DWORD& returned) = 0;
};

} // namespace simulated

namespace simulated::devices
{

/// Opens `path` (UTF-8, as the caller gave it). An error of ERROR_FILE_NOT_FOUND means that the path isn't
/// one of this opener's or that the device isn't there; the next opener is asked then.
using Opener = Outcome<std::shared_ptr<Object>> (*)(std::string_view path, DWORD access, DWORD share,
                                                    const PlatformCall& call);

void Register(Opener opener);

struct Registration
{
    explicit Registration(Opener opener)
    {
        Register(opener);
    }
};

/// True when `path` begins with "\\.\" or "\\?\" and so may name a device.
bool IsDevicePath(std::string_view path) noexcept;

/// The device behind `path`, or the error of the opener that knew it; ERROR_FILE_NOT_FOUND when none did.
Outcome<std::shared_ptr<Object>> Open(std::string_view path, DWORD access, DWORD share,
                                      const PlatformCall& call);

} // namespace simulated::devices
