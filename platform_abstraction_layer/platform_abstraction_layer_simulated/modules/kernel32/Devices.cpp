// modules/kernel32/Devices.cpp
//
// The openers of devices, and DeviceIoControl. Every control is buffered: the device works on copies, so a
// caller may pass one buffer for both ways, and only what the device gives back reaches the caller.
//
// Known differences from Windows: controls are synchronous whatever the handle, and a handle of another kind
// is refused with ERROR_INVALID_FUNCTION without a driver being asked.

#include "modules/kernel32/Devices.h"

#include "base/Trace.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace simulated::devices
{

namespace
{

// Built on first use: folders register while the library is loaded, in no particular order.
std::vector<Opener>& Openers()
{
    static std::vector<Opener>& openers = *new std::vector<Opener>;
    return openers;
}

DWORD Control(HANDLE handle, DWORD code, const void* input, DWORD inputSize, void* output, DWORD outputSize,
              DWORD* returned)
{
    const std::shared_ptr<Object> object = HandleTable::Find(handle);
    if (object == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    const auto device = std::dynamic_pointer_cast<Device>(object);
    if (device == nullptr)
    {
        return ERROR_INVALID_FUNCTION;
    }
    if ((input == nullptr && inputSize > 0) || (output == nullptr && outputSize > 0))
    {
        return ERROR_NOACCESS;
    }

    const auto* inputBytes = static_cast<const BYTE*>(input);
    const std::vector<BYTE> in(inputBytes, inputBytes + inputSize);
    std::vector<BYTE> out(outputSize);
    DWORD count = 0;
    const DWORD error = device->Control(code, inputSize > 0 ? in.data() : nullptr, inputSize,
                                        outputSize > 0 ? out.data() : nullptr, outputSize, count);
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    count = std::min(count, outputSize);
    if (count > 0)
    {
        std::memcpy(output, out.data(), count);
    }
    *returned = count;
    return ERROR_SUCCESS;
}

} // namespace

void Register(Opener opener)
{
    Openers().push_back(opener);
}

bool IsDevicePath(std::string_view path) noexcept
{
    return path.starts_with("\\\\.\\") || path.starts_with("\\\\?\\");
}

Outcome<std::shared_ptr<Object>> Open(std::string_view path, DWORD access, DWORD share,
                                      const PlatformCall& call)
{
    for (const Opener opener : Openers())
    {
        Outcome<std::shared_ptr<Object>> outcome = opener(path, access, share, call);
        if (outcome.error != ERROR_FILE_NOT_FOUND)
        {
            return outcome;
        }
    }
    return {nullptr, ERROR_FILE_NOT_FOUND};
}

} // namespace simulated::devices

using namespace simulated;

SIM_API BOOL WINAPI DeviceIoControl(HANDLE device, DWORD controlCode, LPVOID input, DWORD inputSize,
                                    LPVOID output, DWORD outputSize, LPDWORD returned,
                                    LPOVERLAPPED overlapped)
{
    PlatformCall call(CallClass::Driver, "DeviceIoControl", SIM_CALLER);
    call.Arguments(device, controlCode, inputSize, outputSize);
    return call.Boolean(
        [&]() -> DWORD
        {
            if (returned == nullptr || overlapped != nullptr)
            {
                return ERROR_INVALID_PARAMETER;
            }
            *returned = 0;
            return devices::Control(device, controlCode, input, inputSize, output, outputSize, returned);
        });
}
