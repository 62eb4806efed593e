// modules/kernel32/FileApi.cpp
//
// Opening devices and files, and deleting files.
//
// Known differences from Windows: a file that is there can be opened for reading, which keeps others from
// what the opener doesn't share; nothing reads or writes by handle.

#include "base/ChangeCount.h"
#include "base/Descriptor.h"
#include "base/Text.h"
#include "modules/kernel32/Devices.h"
#include "modules/kernel32/Paths.h"
#include "modules/kernel32/ShareModes.h"

#include <windows.h>

#include <cerrno>
#include <fcntl.h>

using namespace simulated;

namespace
{

class File final : public Object
{
public:
    explicit File(Descriptor descriptor) : Object(ObjectKind::File), m_descriptor(std::move(descriptor))
    {
    }
    ~File() override
    {
        m_descriptor = Descriptor();
        ChangeCount::Announce(); // who was kept from the file may have it now
    }

private:
    Descriptor m_descriptor; // holds the share mode
};

Outcome<std::shared_ptr<Object>> OpenFile(const std::string& path, DWORD access, DWORD share,
                                          DWORD disposition)
{
    if (access != GENERIC_READ || disposition != OPEN_EXISTING)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    paths::Place place;
    if (const DWORD error = paths::FindExisting(path, place); error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    if (place.IsFolder())
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    Descriptor file(open(place.host.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!file.IsOpen())
    {
        return {nullptr, paths::ErrorOf(errno)};
    }
    if (const DWORD error = share_modes::Check(file.Get(), access); error != ERROR_SUCCESS)
    {
        return {nullptr, error};
    }
    share_modes::Claim(file.Get(), share);
    ChangeCount::Announce();
    return {std::make_shared<File>(std::move(file))};
}

DWORD Delete(const std::string& path)
{
    paths::Place place;
    DWORD error = paths::FindExisting(path, place);
    if (error == ERROR_SUCCESS && (place.IsFolder() || place.IsReadOnly()))
    {
        error = ERROR_ACCESS_DENIED;
    }
    error = error != ERROR_SUCCESS ? error : paths::CheckFolder(place);
    error = error != ERROR_SUCCESS ? error : share_modes::Check(place.host, DELETE);
    if (error != ERROR_SUCCESS)
    {
        return error;
    }
    if (unlink(place.host.c_str()) != 0)
    {
        return paths::ErrorOf(errno);
    }
    ChangeCount::Announce();
    return ERROR_SUCCESS;
}

} // namespace

SIM_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                                  DWORD disposition, DWORD flags, HANDLE templateFile)
{
    PlatformCall call(CallClass::File, "CreateFileW", SIM_CALLER);
    call.Arguments(path, access, share, disposition, flags, templateFile);
    return call.Result<HANDLE>(
        INVALID_HANDLE_VALUE,
        [&]() -> Outcome<HANDLE>
        {
            const std::string name = ToUtf8(path);
            const auto opened = devices::IsDevicePath(name) ? devices::Open(name, access, share, call)
                                                            : OpenFile(name, access, share, disposition);
            return {opened.value == nullptr ? INVALID_HANDLE_VALUE : HandleTable::Insert(opened.value, call),
                    opened.error};
        });
}

SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "DeleteFileW", SIM_CALLER);
    call.Arguments(path);
    return call.Boolean([&] { return Delete(ToUtf8(path)); });
}
