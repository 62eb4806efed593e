// modules/kernel32/Files.h
//
// Opened files of the simulated machine, and what is done to a file as a whole. Functions answer
// error numbers; paths are UTF-8.
#pragma once

#include "base/HandleTable.h"

#include <memory>
#include <string_view>

namespace simulated::files
{

/// An opened file.
class File : public Object
{
public:
    /// Takes `descriptor` over. `access` is what the opener asked for.
    File(int descriptor, DWORD access);
    ~File() override;

    DWORD Read(void* buffer, DWORD size, DWORD& read);
    DWORD Write(const void* buffer, DWORD size, DWORD& written);
    DWORD Size(std::uint64_t& size) const;

private:
    DWORD Allow(DWORD rights) const;

    int m_descriptor;
    DWORD m_access;
};

/// The arguments of CreateFileW.
struct OpenRequest
{
    DWORD access;
    DWORD share;
    DWORD disposition;
    DWORD flags;
};

/// Opens or creates as the request says. ERROR_ALREADY_EXISTS beside a file means that it was there before.
Outcome<std::shared_ptr<File>> Open(std::string_view path, const OpenRequest& request);

DWORD Delete(std::string_view path);
DWORD RemoveFolder(std::string_view path);

/// FILE_ATTRIBUTE_... of what lies at `path`.
DWORD Attributes(std::string_view path, DWORD& attributes);

/// A folder and what is missing above it. ERROR_ALREADY_EXISTS when it was there.
DWORD CreateFolders(std::string_view path);

} // namespace simulated::files
