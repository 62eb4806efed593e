// base/HostFiles.h
//
// Files and folders of the host while a notebook is being made, when nobody else looks at it yet. What others
// may look at is changed by WholeFile.
#pragma once

#include <map>
#include <string>

namespace simulated::host_files
{

/// Writes a file directly.
[[nodiscard]] bool Write(const std::string& path, const std::string& bytes);

/// Folders, files and links by their paths below a folder, made all at once.
class Tree
{
public:
    /// Parent folders are added too.
    void AddFolder(const std::string& path);
    void AddFile(const std::string& path, std::string bytes);
    void AddLink(const std::string& path, std::string target);

    bool MakeIn(const std::string& folder) const;

private:
    struct Entry
    {
        bool (*make)(const std::string& path, const std::string& content);
        std::string content;
    };
    void Add(const std::string& path, Entry&& entry);

    std::map<std::string, Entry> m_entries; ///< each behind the folder that it is in
};

/// Removes a file, or a folder with all that is in it. True also when there is nothing.
[[nodiscard]] bool RemoveAll(const std::string& path);

} // namespace simulated::host_files
