// base/HostFiles.cpp
//
// Files and folders of the host.

#include "base/HostFiles.h"

#include "base/ChangeCount.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace simulated::host_files
{

namespace
{

constexpr mode_t kFolderMode = 0777;
constexpr mode_t kFileMode = 0666;

// True also for what is there already.
bool MakeFolder(const std::string& path, const std::string&)
{
    return mkdir(path.c_str(), kFolderMode) == 0 || errno == EEXIST;
}
bool Link(const std::string& path, const std::string& target)
{
    return symlink(target.c_str(), path.c_str()) == 0 || errno == EEXIST;
}

} // namespace

bool Write(const std::string& path, const std::string& bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode);
    if (file < 0)
    {
        return false;
    }
    const ssize_t written = write(file, bytes.data(), bytes.size());
    const bool isWritten = close(file) == 0 && written == static_cast<ssize_t>(bytes.size());
    ChangeCount::Announce();
    return isWritten;
}

void Tree::Add(const std::string& path, Entry&& entry)
{
    if (const std::size_t last = path.rfind('/'); last != std::string::npos)
    {
        AddFolder(path.substr(0, last));
    }
    m_entries.try_emplace(path, std::move(entry));
}

void Tree::AddFolder(const std::string& path)
{
    Add(path, {&MakeFolder, {}});
}

void Tree::AddFile(const std::string& path, std::string bytes)
{
    Add(path, {&Write, std::move(bytes)});
}

void Tree::AddLink(const std::string& path, std::string target)
{
    Add(path, {&Link, std::move(target)});
}

bool Tree::MakeIn(const std::string& folder) const
{
    const bool isMade =
        std::all_of(m_entries.begin(), m_entries.end(),
                    [&](const auto& entry)
                    { return entry.second.make(folder + '/' + entry.first, entry.second.content); });
    ChangeCount::Announce();
    return isMade;
}

bool RemoveAll(const std::string& path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
    ChangeCount::Announce();
    return !error;
}

} // namespace simulated::host_files
