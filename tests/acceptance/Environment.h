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

/// What the plug-in's work leaves: the heap in use, what is held as in `Holdings`, and the files of the
/// machine or, on Windows, of its configuration.
struct Footprint
{
    std::size_t heapBytes = 0; ///< 0 under the address sanitizer
    DWORD handles = 0;
    std::size_t files = 0;
    std::size_t fileBytes = 0;
};
Footprint Measured();

/// Counts files and their bytes below a folder.
inline void AddFiles(const std::filesystem::path& folder, Footprint& footprint)
{
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    {
        footprint.files += entry.is_regular_file() ? 1 : 0;
        footprint.fileBytes += entry.is_regular_file() ? static_cast<std::size_t>(entry.file_size()) : 0;
    }
}

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
