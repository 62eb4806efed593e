// scheme/ClearFiles.cpp
//
// Removing the files of a clearing.

#include "scheme/ClearFiles.h"

#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

void DeleteFileBelow(const wchar_t* folder, const wchar_t* suffix, const wchar_t* format) noexcept
{
    // Room for more than a whole path: a path that is too long must fail, not name another file.
    wchar_t path[2 * text::kPathCapacity];
    text::Format(path, L"%s\\%s", folder, suffix);
    DeleteFileW(path);
    CORVLBase::DBGOUT(format, static_cast<const wchar_t*>(path));
}
