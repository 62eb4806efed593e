// modules/kernel32/Handles.cpp
//
// CloseHandle, for handles of every kind that it closes on Windows.

#include "base/HandleTable.h"

#include <windows.h>

namespace simulated
{

namespace
{

DWORD Close(HANDLE handle)
{
    const auto object = HandleTable::Find(handle);
    const bool closedElsewhere =
        object != nullptr && (object->Kind() == ObjectKind::Key || object->Kind() == ObjectKind::DeviceList);
    return closedElsewhere ? ERROR_INVALID_HANDLE : HandleTable::Close(handle);
}

} // namespace

} // namespace simulated

using namespace simulated;

// The pseudo handles of process and thread are closed without effect.
SIM_API BOOL WINAPI CloseHandle(HANDLE handle)
{
    PlatformCall call(CallClass::Object, "CloseHandle", SIM_CALLER);
    call.Arguments(handle);
    return call.Release(
        [&]() -> DWORD
        {
            const bool isPseudo = handle == GetCurrentProcess() || handle == GetCurrentThread();
            return isPseudo ? ERROR_SUCCESS : Close(handle);
        });
}
