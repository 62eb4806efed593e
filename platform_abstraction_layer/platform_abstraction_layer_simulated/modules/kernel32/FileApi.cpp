// modules/kernel32/FileApi.cpp
//
// The public functions of files and folders.

#include "base/HandleTable.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "modules/kernel32/Devices.h"
#include "modules/kernel32/Files.h"

#include <windows.h>

using namespace simulated;

namespace
{

Outcome<HANDLE> OpenHandle(const std::string& path, const files::OpenRequest& request,
                           const PlatformCall& call)
{
    if (devices::IsDevicePath(path))
    {
        const Outcome<std::shared_ptr<Object>> device =
            devices::Open(path, request.access, request.share, call);
        if (device.value != nullptr)
        {
            return {HandleTable::Insert(device.value, call), device.error};
        }
        if (device.error != ERROR_FILE_NOT_FOUND || !devices::NamesDrive(path))
        {
            return {INVALID_HANDLE_VALUE, device.error};
        }
    }
    const Outcome<std::shared_ptr<files::File>> file = files::Open(path, request);
    if (file.value == nullptr)
    {
        return {INVALID_HANDLE_VALUE, file.error};
    }
    // The caller asks the last error whether the file was there, so a new one must clear it.
    SetLastError(ERROR_SUCCESS);
    return {HandleTable::Insert(file.value, call), file.error};
}

// Finds the file behind a handle and lets `work` answer an error number.
template <class Work>
DWORD WithFile(HANDLE handle, Work work)
{
    const std::shared_ptr<files::File> file = HandleTable::Find<files::File>(handle);
    return file == nullptr ? static_cast<DWORD>(ERROR_INVALID_HANDLE) : work(*file);
}

// A transfer between a file and memory. Overlapped ones don't exist here.
template <class Work>
DWORD Transfer(HANDLE handle, const void* buffer, DWORD size, LPDWORD count, const OVERLAPPED* overlapped,
               Work work)
{
    DWORD done = 0;
    DWORD error = ERROR_NOT_SUPPORTED;
    if (overlapped == nullptr)
    {
        error = buffer == nullptr && size > 0
                    ? static_cast<DWORD>(ERROR_INVALID_USER_BUFFER)
                    : WithFile(handle, [&](files::File& file) { return work(file, done); });
    }
    if (count != nullptr)
    {
        *count = done;
    }
    return error;
}

} // namespace

SIM_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES,
                                  DWORD disposition, DWORD flags, HANDLE templateFile)
{
    PlatformCall call(CallClass::File, "CreateFileW", SIM_CALLER);
    call.Arguments(path, access, share, disposition, flags, templateFile);
    return call.Result<HANDLE>(INVALID_HANDLE_VALUE,
                               [&] {
                                   return OpenHandle(ToUtf8(path), {access, share, disposition, flags}, call);
                               });
}

SIM_API BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped)
{
    PlatformCall call(CallClass::File, "ReadFile", SIM_CALLER);
    call.Arguments(file, size);
    return call.Boolean(
        [&]
        {
            return Transfer(file, buffer, size, read, overlapped,
                            [&](files::File& opened, DWORD& done)
                            { return opened.Read(buffer, size, done); });
        });
}

SIM_API BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written,
                              LPOVERLAPPED overlapped)
{
    PlatformCall call(CallClass::File, "WriteFile", SIM_CALLER);
    call.Arguments(file, size);
    return call.Boolean(
        [&]
        {
            return Transfer(file, buffer, size, written, overlapped,
                            [&](files::File& opened, DWORD& done)
                            { return opened.Write(buffer, size, done); });
        });
}

SIM_API DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high)
{
    PlatformCall call(CallClass::File, "GetFileSize", SIM_CALLER);
    call.Arguments(file);
    return call.Result<DWORD>(INVALID_FILE_SIZE,
                              [&]() -> Outcome<DWORD>
                              {
                                  std::uint64_t size = 0;
                                  const DWORD error =
                                      WithFile(file, [&](files::File& opened) { return opened.Size(size); });
                                  if (error != ERROR_SUCCESS)
                                  {
                                      return {INVALID_FILE_SIZE, error};
                                  }
                                  if (high != nullptr)
                                  {
                                      *high = static_cast<DWORD>(size >> 32);
                                  }
                                  return {static_cast<DWORD>(size), ERROR_SUCCESS};
                              });
}

SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "DeleteFileW", SIM_CALLER);
    call.Arguments(path);
    return call.Boolean([&] { return files::Delete(ToUtf8(path)); });
}

SIM_API BOOL WINAPI RemoveDirectoryW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "RemoveDirectoryW", SIM_CALLER);
    call.Arguments(path);
    return call.Boolean([&] { return files::RemoveFolder(ToUtf8(path)); });
}

SIM_API DWORD WINAPI GetFileAttributesW(LPCWSTR path)
{
    PlatformCall call(CallClass::File, "GetFileAttributesW", SIM_CALLER);
    call.Arguments(path);
    return call.Result<DWORD>(INVALID_FILE_ATTRIBUTES,
                              [&]
                              {
                                  Outcome<DWORD> attributes{INVALID_FILE_ATTRIBUTES, ERROR_SUCCESS};
                                  attributes.error = files::Attributes(ToUtf8(path), attributes.value);
                                  return attributes;
                              });
}
