// tests/acceptance/Environment.h
//
// What the machine under the tests is: natively a fresh notebook for each test, on Windows the machine as it
// is, brought into the state of a fresh installation. The only difference between the two; the tests are the
// same.
#pragma once

#include <windows.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

namespace environment
{

/// The running account, and another one that may send requests, in the ANSI code page.
std::string UserName();
std::string OtherUserName();

/// The major versions of Windows that this machine can be.
std::vector<DWORD> Generations();

/// Begins anew as Windows of major version `major`, one of `Generations`, with the reference installation.
void Recreate(DWORD major);

/// Removes the kernel driver, the batteries and the network adapters; on Windows there are none.
void RemoveHardware();

/// True when the plug-in has asked for nothing but its log since `ForgetCalls`; always where that can't be
/// seen.
bool HasOnlyLogged();
void ForgetCalls();

/// What is held of the system: on Windows by this process, natively by the plug-in.
struct Holdings
{
    DWORD handles = 0;
    std::size_t heapBytes = 0; ///< natively 0: there the address sanitizer looks
};
Holdings Held();

/// The bytes of the process's heap in use, natively with the simulated platform's; 0 under the address
/// sanitizer. Natively this ends the recording of calls, whose list would count.
std::size_t HeapInUse();

/// The folders in which requests leave files.
std::vector<std::filesystem::path> Folders();

/// A machine for one test.
class Machine
{
public:
    Machine();

    /// Fails the test when the plug-in still holds something of the platform's, where that can be counted.
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;
};

} // namespace environment
