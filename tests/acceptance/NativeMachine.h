// tests/acceptance/NativeMachine.h
//
// The simulated machine under a test, for tests that only run natively.
#pragma once

#include <windows.h>

namespace environment
{

/// Begins anew with a notebook of Windows version `major`, with the reference installation.
void Recreate(DWORD major, unsigned codePage = 1252);

} // namespace environment
