// control/Snapshot.h
//
// The content of a notebook, to be restored after a test has changed it. Faster than making another one.
#pragma once

#include "base/WholeFile.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>

namespace simulated
{

class Snapshot
{
public:
    /// Takes everything below the host's folder `notebook` but the kernel objects, which live with their
    /// processes.
    explicit Snapshot(const std::string& notebook);

    /// Restores what has changed since, and removes what was added. False when a file can't be written.
    [[nodiscard]] bool Restore();

    /// True when a file or folder isn't what it was.
    bool HasChanged() const;

private:
    struct File
    {
        std::string bytes;
        FileState state; ///< as of the last time that the bytes were known to be in the file
    };

    struct Differences
    {
        std::set<std::filesystem::path> strangers; ///< files and folders that have come
        std::set<std::filesystem::path> stale;     ///< files that have changed or gone
        std::size_t folders = 0;                   ///< of ours, that are still there
    };
    Differences Compare() const;

    template <class Visit>
    void Walk(Visit visit) const;

    std::filesystem::path m_notebook;
    std::map<std::filesystem::path, File> m_files;
    std::set<std::filesystem::path> m_folders;
};

} // namespace simulated
