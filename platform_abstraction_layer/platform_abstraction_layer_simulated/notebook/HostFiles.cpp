// notebook/HostFiles.cpp
//
// Files and folders of the host.

#include "notebook/HostFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace simulated::host_files
{

namespace
{

constexpr mode_t kFolderMode = 0777;
constexpr mode_t kFileMode = 0666;

} // namespace

bool MakeFolder(const std::string& path)
{
    return mkdir(path.c_str(), kFolderMode) == 0 || errno == EEXIST;
}

bool MakeFolders(const std::string& path)
{
    if (MakeFolder(path))
    {
        return true;
    }
    const std::size_t last = path.rfind('/');
    return errno == ENOENT && last != std::string::npos && last != 0 && MakeFolders(path.substr(0, last)) &&
           MakeFolder(path);
}

bool Write(const std::string& path, std::string_view bytes)
{
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kFileMode);
    if (file < 0)
    {
        return false;
    }
    const ssize_t written = write(file, bytes.data(), bytes.size());
    return close(file) == 0 && written == static_cast<ssize_t>(bytes.size());
}

bool Link(const std::string& path, const std::string& target)
{
    return symlink(target.c_str(), path.c_str()) == 0 || errno == EEXIST;
}

bool RemoveAll(const std::string& path)
{
    std::error_code error;
    std::filesystem::remove_all(path, error);
    return !error;
}

} // namespace simulated::host_files
