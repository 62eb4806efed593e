// tests/support/Snapshot.h
//
// The content of a notebook, to be brought back after a test has changed it. Faster than making another one.
#pragma once

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <sys/stat.h>

class Snapshot
{
public:
    /// Takes everything below the host's folder `notebook` but the kernel objects, which live with their
    /// processes.
    explicit Snapshot(const std::string& notebook);

    /// Brings back what has changed since, and takes away what has come.
    void Restore();

    /// True when a file or folder isn't what it was.
    bool HasChanged() const;

private:
    struct File
    {
        std::string bytes;
        struct stat state; ///< as of the last time that the bytes were known to be in the file
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
