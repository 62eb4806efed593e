// modules/kernel32/Modules.h
//
// The DLLs of the operating system as LoadLibraryW and GetProcAddress know them. Each folder that stands for
// such a DLL registers its table with one object at namespace scope:
//
//     const modules::Export kExports[] = {
//         {"PowerGetActiveScheme", 0, modules::Address(&PowerGetActiveScheme), 6},
//     };
//     const modules::Registration kRegistration("PowrProf.dll", kExports);
//
// The objects are built when the platform's library is loaded, before any library that stands on it.
//
// machine.ini can remove modules and entries, section "Modules": "PowrProf.dll=absent",
// "PowrProf.dll.PowerReadFriendlyName=absent", "Shlwapi.dll.270=absent". What is bound at link time stays.
// Any other value adds a module: "ORVLDLL.DLL=C:\Program Files\Kelvo\ORVL\Bin\ORVLDLL.DLL" is loaded from
// that path and exports nothing.
#pragma once

#include "base/PlatformCall.h"

#include <span>

namespace simulated::modules
{

/// One entry of a DLL's export table.
struct Export
{
    const char* name;     ///< null when it is exported by number alone
    WORD ordinal;         ///< 0 when only the name counts
    FARPROC address;      ///< see `Address`
    DWORD sinceMajor = 0; ///< first major version of the system that has it; older ones lack it
};

/// A function as GetProcAddress returns it.
template <class Function>
FARPROC Address(Function* function)
{
    // Through the one type that compilers accept for any function.
    return reinterpret_cast<FARPROC>(reinterpret_cast<void (*)()>(function));
}

/// Makes a DLL known for the life of the process. `exports` must live as long. A system whose major version
/// is below `sinceMajor` lacks the DLL.
void Register(const char* name, std::span<const Export> exports, DWORD sinceMajor = 0);

struct Registration
{
    Registration(const char* name, std::span<const Export> exports, DWORD sinceMajor = 0)
    {
        Register(name, exports, sinceMajor);
    }
};

} // namespace simulated::modules
