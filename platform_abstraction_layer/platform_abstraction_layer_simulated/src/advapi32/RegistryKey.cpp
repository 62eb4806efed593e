// advapi32/RegistryKey.cpp
//
// Finding, opening, creating and deleting keys.

#include "advapi32/RegistryKey.h"

#include "advapi32/Hives.h"
#include "notebook/Accounts.h"
#include "notebook/HostFiles.h"
#include "notebook/WholeFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace simulated::registry
{

namespace
{

constexpr const char* kClassesKey = "/SOFTWARE/Classes";
constexpr const char* kDefaultUser = "/.DEFAULT";
constexpr REGSAM kViewFlags = KEY_WOW64_32KEY | KEY_WOW64_64KEY;

std::string CurrentUserRoot()
{
    // A user whose hive isn't loaded gets the default one, as on Windows.
    const std::string root = hives::UsersRoot();
    const std::string sid = Accounts::RunningSid();
    const std::string own = root + '/' + sid;
    return !sid.empty() && access(own.c_str(), F_OK) == 0 ? own : root + kDefaultUser;
}

std::string ClassesRoot()
{
    return hives::MachineRoot() + kClassesKey;
}

struct PredefinedKey
{
    std::uintptr_t handle;
    std::string (*path)();
};
const PredefinedKey kPredefinedKeys[] = {
    {reinterpret_cast<std::uintptr_t>(HKEY_LOCAL_MACHINE), &hives::MachineRoot},
    {reinterpret_cast<std::uintptr_t>(HKEY_CURRENT_USER), &CurrentUserRoot},
    {reinterpret_cast<std::uintptr_t>(HKEY_USERS), &hives::UsersRoot},
    {reinterpret_cast<std::uintptr_t>(HKEY_CLASSES_ROOT), &ClassesRoot},
};

const PredefinedKey* FindPredefined(HKEY handle) noexcept
{
    const auto* const found = std::find_if(std::begin(kPredefinedKeys), std::end(kPredefinedKeys),
                                           [handle](const PredefinedKey& key) {
                                               return key.handle == reinterpret_cast<std::uintptr_t>(handle);
                                           });
    return found == std::end(kPredefinedKeys) ? nullptr : found;
}

// The subkeys of these can only be hives.
bool IsRootOfHives(const std::string& path)
{
    return path == hives::UsersRoot() || path == hives::MachineRoot();
}

// The link below HKEY_USERS that `path` leads through; empty for a path that leads through none.
std::string HiveLink(const std::string& path)
{
    const std::string users = hives::UsersRoot() + '/';
    return path.starts_with(users) ? path.substr(0, path.find('/', users.size())) : std::string();
}

int OpenFolder(const std::string& path)
{
    return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

// The parts of a path as names of folders. ERROR_INVALID_PARAMETER for a name that can't be,
// ERROR_BAD_PATHNAME for a path that begins with a backslash.
DWORD FolderNames(std::string_view subKey, std::vector<std::string>& names)
{
    if (subKey.starts_with('\\'))
    {
        return ERROR_BAD_PATHNAME;
    }
    for (const std::string& part : SplitPath(subKey))
    {
        names.push_back(KeyFileName(part));
        if (names.back().empty())
        {
            return ERROR_INVALID_PARAMETER;
        }
    }
    return ERROR_SUCCESS;
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string joined;
    for (const std::string& name : names)
    {
        joined += '/';
        joined += name;
    }
    return joined;
}

// Corrects the spelling of as many leading names as exist, and answers how many these are.
std::size_t SpellAsCreated(std::string folder, std::vector<std::string>& names)
{
    std::size_t existing = 0;
    for (std::string& name : names)
    {
        const std::size_t above = folder.size();
        folder += '/';
        folder += name;
        if (access(folder.c_str(), F_OK) != 0)
        {
            folder.resize(above);
            const std::string spelled = FindIgnoringCase(folder, name);
            if (spelled.empty())
            {
                break;
            }
            name = spelled;
            folder += '/';
            folder += name;
        }
        ++existing;
    }
    return existing;
}

// The shared lock that keeps the hive of a new key in place. False when the hive is gone.
bool LockHive(const Base& base, const std::string& path, int& lock)
{
    lock = -1;
    if (base.key != nullptr)
    {
        lock = base.key->Hive() < 0 ? -1 : fcntl(base.key->Hive(), F_DUPFD_CLOEXEC, 0);
        return lock >= 0 || base.key->Hive() < 0;
    }
    const std::string link = HiveLink(path);
    if (link.empty())
    {
        return true;
    }
    lock = OpenFolder(link);
    return lock >= 0 && flock(lock, LOCK_SH) == 0;
}

// Opens the key at `below`, a path of folder names that begins with a slash, or an empty one.
std::shared_ptr<Key> OpenAt(const Base& base, const std::string& below, REGSAM access)
{
    int hive = -1;
    const std::string path = base.path + below;
    // The lock comes first: a hive that is unloaded meanwhile is then missed by the second open.
    const bool isLocked = LockHive(base, path, hive);
    const int folder = isLocked ? OpenFolder(base.folder + below) : -1;
    if (folder < 0)
    {
        if (hive >= 0)
        {
            close(hive);
        }
        return nullptr;
    }
    return std::make_shared<Key>(folder, hive, access, path);
}

// Moves a folder out of sight and removes it: others see it whole or not at all.
bool RemoveFolder(const std::string& folder)
{
    const std::size_t last = folder.rfind('/');
    const std::string doomed = folder.substr(0, last) + "/.~deleted.new";
    return host_files::RemoveAll(doomed) && std::rename(folder.c_str(), doomed.c_str()) == 0 &&
           host_files::RemoveAll(doomed);
}

} // namespace

Key::Key(int folder, int hive, REGSAM access, std::string path)
    : Object(ObjectKind::Key), m_folder(folder), m_hive(hive), m_access(access), m_path(std::move(path))
{
}

Key::~Key()
{
    close(m_folder);
    if (m_hive >= 0)
    {
        close(m_hive);
    }
}

bool Key::IsDeleted() const
{
    struct stat now = {};
    struct stat opened = {};
    return stat(m_path.c_str(), &now) != 0 || fstat(m_folder, &opened) != 0 || now.st_ino != opened.st_ino ||
           now.st_dev != opened.st_dev;
}

std::string FolderOf(const Key& key)
{
    return "/proc/self/fd/" + std::to_string(key.Folder());
}

DWORD FindBase(HKEY handle, Base& base)
{
    if (const PredefinedKey* const predefined = FindPredefined(handle))
    {
        base.path = predefined->path();
        base.folder = base.path;
        base.access = KEY_ALL_ACCESS;
        return ERROR_SUCCESS;
    }
    base.key = HandleTable::Find<Key>(handle);
    if (base.key == nullptr)
    {
        return ERROR_INVALID_HANDLE;
    }
    base.path = base.key->Path();
    base.folder = FolderOf(*base.key);
    base.access = base.key->Access();
    return ERROR_SUCCESS;
}

DWORD MissingError(const Base& base)
{
    return base.key != nullptr && base.key->IsDeleted() ? ERROR_KEY_DELETED : ERROR_FILE_NOT_FOUND;
}

DWORD ChangeError(const Base& base)
{
    switch (errno)
    {
    case ENOENT:
        return base.key != nullptr && base.key->IsDeleted() ? ERROR_KEY_DELETED : ERROR_CANTWRITE;
    case EACCES:
    case EPERM:
    case EROFS:
        return ERROR_ACCESS_DENIED;
    case ENOSPC:
        return ERROR_DISK_FULL;
    case ENAMETOOLONG:
        return ERROR_INVALID_PARAMETER;
    default:
        return ERROR_CANTWRITE;
    }
}

bool IsPredefined(HKEY handle) noexcept
{
    return FindPredefined(handle) != nullptr;
}

REGSAM GrantedAccess(REGSAM wanted) noexcept
{
    REGSAM granted = wanted & KEY_ALL_ACCESS;
    granted |= (wanted & GENERIC_READ) != 0 ? KEY_READ : 0;
    granted |= (wanted & GENERIC_WRITE) != 0 ? KEY_WRITE : 0;
    granted |= (wanted & (GENERIC_ALL | MAXIMUM_ALLOWED)) != 0 ? KEY_ALL_ACCESS : 0;
    return granted & ~static_cast<REGSAM>(kViewFlags);
}

DWORD Open(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened)
{
    std::vector<std::string> names;
    if (const DWORD error = FolderNames(subKey, names); error != ERROR_SUCCESS)
    {
        return error;
    }
    const REGSAM granted = GrantedAccess(access);
    opened = OpenAt(base, Joined(names), granted);
    if (opened == nullptr && SpellAsCreated(base.folder, names) == names.size())
    {
        opened = OpenAt(base, Joined(names), granted);
    }
    if (opened == nullptr)
    {
        return MissingError(base);
    }
    return granted == 0 ? ERROR_ACCESS_DENIED : ERROR_SUCCESS;
}

DWORD Create(const Base& base, std::string_view subKey, REGSAM access, std::shared_ptr<Key>& opened,
             bool& isNew)
{
    isNew = false;
    if (const DWORD error = Open(base, subKey, access, opened); error != ERROR_FILE_NOT_FOUND)
    {
        return error;
    }
    std::vector<std::string> names;
    FolderNames(subKey, names);
    const FileLock lock(hives::WritersLock());
    if (!lock.IsHeld())
    {
        return ERROR_CANTWRITE;
    }
    std::size_t existing = SpellAsCreated(base.folder, names);
    if (existing == 0 && IsRootOfHives(base.path))
    {
        return ERROR_INVALID_PARAMETER;
    }
    isNew = existing < names.size();
    std::string folder = base.folder;
    for (const std::string& name : names)
    {
        folder += '/' + name;
        if (existing != 0)
        {
            --existing;
        }
        else if (mkdir(folder.c_str(), 0777) != 0)
        {
            return ChangeError(base);
        }
    }
    opened = OpenAt(base, Joined(names), GrantedAccess(access));
    return opened == nullptr ? MissingError(base) : ERROR_SUCCESS;
}

DWORD Delete(const Base& base, std::string_view subKey)
{
    std::vector<std::string> names;
    if (const DWORD error = FolderNames(subKey, names); error != ERROR_SUCCESS)
    {
        return error;
    }
    const FileLock lock(hives::WritersLock());
    if (!lock.IsHeld())
    {
        return ERROR_CANTWRITE;
    }
    if (SpellAsCreated(base.folder, names) != names.size() || (base.key != nullptr && base.key->IsDeleted()))
    {
        return MissingError(base);
    }
    const std::string folder = base.path + Joined(names);
    if (IsRootOfHives(folder) || folder == HiveLink(folder) || !List(folder, EntryKind::Key).empty())
    {
        return ERROR_ACCESS_DENIED;
    }
    return RemoveFolder(folder) ? ERROR_SUCCESS : ChangeError(base);
}

} // namespace simulated::registry
