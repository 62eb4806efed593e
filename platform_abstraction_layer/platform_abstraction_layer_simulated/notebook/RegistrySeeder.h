// notebook/RegistrySeeder.h
//
// Fills a fresh hive quickly: it alone knows the folder, so it writes the files directly, without the locks
// and side files of the registry functions.
#pragma once

#include "advapi32/ValueText.h"
#include "notebook/PowerSeeding.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace simulated
{

class RegistrySeeder
{
public:
    /// `root` is the hive's folder on the host; it comes into being.
    explicit RegistrySeeder(std::string root);

    /// Makes a key, `path` being below the hive's root. False when the host refuses; so do the others.
    bool AddKey(std::string_view path);
    bool Put(std::string_view path, std::string_view name, const registry::Value& value);
    bool PutText(std::string_view path, std::string_view name, std::string_view text);
    bool PutNumber(std::string_view path, std::string_view name, DWORD number);

    /// A value whose file is ready made.
    struct File
    {
        std::string path;
        std::string name;
        std::string text;
    };
    bool Put(const File& file);

    /// `Put` in the form that the seeds of other parts of the machine take.
    RegistryPut AsPut();

    /// What a seed puts, for hives that all get the same.
    static std::vector<File> Record(bool (*seed)(const RegistryPut& put));

private:
    /// The host folder of a key, empty when it can't be made.
    std::string FolderOf(std::string_view path);

    std::string m_root;
    std::map<std::string, std::string> m_folders; ///< by folded key path
};

} // namespace simulated
