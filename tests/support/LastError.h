// tests/support/LastError.h
//
// Why a call of Windows failed, so that a test can say it in one line. Plain Win32, for Windows too.
#pragma once

#include <windows.h>

/// 0 or the last error of a call that returned `succeeded`; of the type that the error numbers have. Leaves
/// none behind, so that a failure without a reason isn't taken for one with.
inline long ErrorOf(bool succeeded)
{
    const long error = succeeded ? ERROR_SUCCESS : static_cast<long>(GetLastError());
    SetLastError(ERROR_SUCCESS);
    return error;
}
