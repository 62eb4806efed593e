// notebook/DllEntry.h
//
// What the loader's part inside each DLL (src/loader/DllEntry.cpp) tells the platform.
#pragma once

namespace simulated
{

/// Notes that the DllMain of the library that begins at `module` refused to be loaded; the LoadLibraryW that
/// is under way then fails.
void RefuseModule(const void* module);

} // namespace simulated
