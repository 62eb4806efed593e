// notebook/HostFiles.h
//
// Files and folders of the host while a notebook is being made, when nobody else looks at it yet. What others
// may look at is changed by WholeFile.
#pragma once

#include <string>
#include <string_view>

namespace simulated::host_files
{

/// True also when the folder is there already.
bool MakeFolder(const std::string& path);

/// With all folders above it.
bool MakeFolders(const std::string& path);

/// Writes a file directly.
bool Write(const std::string& path, std::string_view bytes);

/// A symbolic link; true also when something of that name is there already.
bool Link(const std::string& path, const std::string& target);

/// Removes a file, or a folder with all that is in it. True also when there is nothing.
bool RemoveAll(const std::string& path);

} // namespace simulated::host_files
