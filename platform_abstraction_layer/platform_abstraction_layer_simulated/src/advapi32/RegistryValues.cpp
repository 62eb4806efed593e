// advapi32/RegistryValues.cpp
//
// Reading, writing, deleting and listing what is in a key.

#include "advapi32/Hives.h"
#include "advapi32/RegistryKey.h"
#include "notebook/WholeFile.h"

#include <sys/stat.h>
#include <unistd.h>

namespace simulated::registry
{

DWORD ReadValue(const Base& base, std::string_view name, Value& value)
{
    const std::string fileName = ValueFileName(name);
    std::optional<std::string> text = ReadWhole(base.folder + '/' + fileName);
    if (!text)
    {
        const std::string spelled = FindIgnoringCase(base.folder, fileName);
        text = spelled.empty() ? std::nullopt : ReadWhole(base.folder + '/' + spelled);
    }
    if (!text)
    {
        return MissingError(base);
    }
    const std::optional<Value> parsed = ParseValue(*text);
    if (!parsed)
    {
        return ERROR_BADDB; // somebody has edited the file into nonsense
    }
    value = *parsed;
    return ERROR_SUCCESS;
}

DWORD WriteValue(const Base& base, std::string_view name, const Value& value)
{
    std::string fileName = ValueFileName(name);
    if (fileName.empty())
    {
        return ERROR_INVALID_PARAMETER;
    }
    const FileLock lock(hives::WritersLock());
    if (!lock.IsHeld())
    {
        return ERROR_CANTWRITE;
    }
    if (access((base.folder + '/' + fileName).c_str(), F_OK) != 0)
    {
        const std::string spelled = FindIgnoringCase(base.folder, fileName);
        fileName = spelled.empty() ? fileName : spelled;
    }
    return WriteWhole(base.folder + '/' + fileName, FormatValue(value)) ? ERROR_SUCCESS : ChangeError(base);
}

DWORD DeleteValue(const Base& base, std::string_view name)
{
    const std::string fileName = ValueFileName(name);
    const FileLock lock(hives::WritersLock());
    if (!lock.IsHeld())
    {
        return ERROR_CANTWRITE;
    }
    const std::string spelled = FindIgnoringCase(base.folder, fileName);
    if (spelled.empty())
    {
        return MissingError(base);
    }
    return unlink((base.folder + '/' + spelled).c_str()) == 0 ? ERROR_SUCCESS : ChangeError(base);
}

DWORD ListNames(const Base& base, EntryKind kind, std::vector<std::string>& names)
{
    for (Entry& entry : List(base.folder, kind))
    {
        names.push_back(std::move(entry.name));
    }
    return names.empty() && base.key != nullptr && base.key->IsDeleted() ? ERROR_KEY_DELETED : ERROR_SUCCESS;
}

DWORD LastWrite(const Base& base, FILETIME& time)
{
    struct stat status = {};
    if (stat(base.folder.c_str(), &status) != 0)
    {
        return MissingError(base);
    }
    constexpr std::uint64_t kTicksPerSecond = 10'000'000;
    constexpr std::uint64_t kSecondsTo1970 = 11'644'473'600;
    const std::uint64_t ticks =
        (static_cast<std::uint64_t>(status.st_mtim.tv_sec) + kSecondsTo1970) * kTicksPerSecond +
        static_cast<std::uint64_t>(status.st_mtim.tv_nsec) / 100;
    time = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    return ERROR_SUCCESS;
}

} // namespace simulated::registry
