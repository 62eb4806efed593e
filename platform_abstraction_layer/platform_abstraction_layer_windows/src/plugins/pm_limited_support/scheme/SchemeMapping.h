// scheme/SchemeMapping.h
//
// From a scheme index to the operating system's scheme and back. On the XP path the index is the system's
// number and existence is a subkey of its store; on the Vista path the index is a row of the scheme values
// file, and the row holds a GUID that the system has to know.
#pragma once

#include <windows.h>

class CORVLProfile;
class CSchemeEx;

namespace mapping
{

/// The existence test with which nearly every operation starts, by the engine's path.
bool SchemeExists(const CSchemeEx& engine, int index) noexcept;

/// The GUID of a row. A row whose scheme the operating system no longer knows is removed with all that it
/// holds, and doesn't count.
bool RowToGuid(int row, GUID& guid) noexcept;

/// Gives a scheme the next free row unless the row before is the scheme's already; the row, or -1.
int AddRow(const GUID& guid) noexcept;

/// Removes the section of a scheme, stored variables included, from an open scheme values file.
void RemoveSection(CORVLProfile& values, int index) noexcept;

} // namespace mapping
