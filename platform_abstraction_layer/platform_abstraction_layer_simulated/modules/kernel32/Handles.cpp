// modules/kernel32/Handles.cpp
//
// CloseHandle, for handles of every kind that it closes on Windows.

#include "base/HandleTable.h"

#include <windows.h>

using namespace simulated;

// The pseudo handles of process and thread are closed without effect.
SIM_API BOOL WINAPI CloseHandle(HANDLE handle)
{
    PlatformCall call(CallClass::Object, "CloseHandle", SIM_CALLER);
    call.Arguments(handle);
    return call.Release(
        [&]() -> DWORD
        {
            if (handle == GetCurrentProcess() || handle == GetCurrentThread())
            {
                return ERROR_SUCCESS;
            }
            const auto object = HandleTable::Find(handle);
            const bool isClosedElsewhere = object != nullptr && (object->Kind() == ObjectKind::Key ||
                                                                 object->Kind() == ObjectKind::DeviceList);
            return isClosedElsewhere ? static_cast<DWORD>(ERROR_INVALID_HANDLE) : HandleTable::Close(handle);
        });
}
