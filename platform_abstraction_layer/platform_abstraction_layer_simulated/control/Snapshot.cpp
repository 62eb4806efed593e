// control/Snapshot.cpp
//
// The files of a notebook in memory. A file that is unchanged by inode, size and time isn't read again.

#include "control/Snapshot.h"

namespace simulated
{

template <class Visit>
void Snapshot::Walk(Visit visit) const
{
    std::filesystem::recursive_directory_iterator place(m_notebook);
    for (; place != std::filesystem::recursive_directory_iterator(); ++place)
    {
        if (place->path().filename() == "objects" && place.depth() == 0)
        {
            place.disable_recursion_pending();
        }
        else if (!IsHousekeepingName(place->path().filename().string()))
        {
            visit(*place);
        }
    }
}

Snapshot::Snapshot(const std::string& notebook) : m_notebook(notebook)
{
    Walk(
        [this](const std::filesystem::directory_entry& entry)
        {
            if (entry.is_directory())
            {
                m_folders.insert(entry.path());
            }
            else
            {
                m_files[entry.path()] = {ReadWhole(entry.path().string()).value_or(""),
                                         StateOf(entry.path().string())};
            }
        });
}

Snapshot::Differences Snapshot::Compare() const
{
    Differences differences;
    for (const auto& [path, file] : m_files)
    {
        differences.stale.insert(path);
    }
    Walk(
        [&](const std::filesystem::directory_entry& entry)
        {
            const auto known = m_files.find(entry.path());
            if (entry.is_directory() ? !m_folders.contains(entry.path()) : known == m_files.end())
            {
                differences.strangers.insert(entry.path());
            }
            else if (entry.is_directory())
            {
                ++differences.folders;
            }
            else if (known->second.state == StateOf(entry.path().string()))
            {
                differences.stale.erase(entry.path());
            }
        });
    return differences;
}

bool Snapshot::HasChanged() const
{
    const Differences differences = Compare();
    return !differences.strangers.empty() || !differences.stale.empty() ||
           differences.folders != m_folders.size();
}

bool Snapshot::Restore()
{
    bool isRestored = true;
    const Differences differences = Compare();
    for (const std::filesystem::path& stranger : differences.strangers)
    {
        std::filesystem::remove_all(stranger);
    }
    if (differences.folders != m_folders.size())
    {
        for (const std::filesystem::path& folder : m_folders)
        {
            std::filesystem::create_directory(folder);
        }
    }
    for (const std::filesystem::path& path : differences.stale)
    {
        File& file = m_files[path];
        isRestored &= WriteWhole(path.string(), file.bytes);
        file.state = StateOf(path.string());
    }
    return isRestored;
}

} // namespace simulated
