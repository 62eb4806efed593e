// notebook/RegistrySeeder.cpp
//
// A fresh hive, file by file.

#include "notebook/RegistrySeeder.h"

#include "advapi32/RegistryNames.h"
#include "notebook/HostFiles.h"
#include "notebook/Text.h"

#include <winnt.h>

namespace simulated
{

RegistrySeeder::RegistrySeeder(std::string root) : m_root(std::move(root))
{
    host_files::MakeFolder(m_root);
}

std::string RegistrySeeder::FolderOf(std::string_view path)
{
    const auto known = m_folders.find(FoldCase(path));
    if (known != m_folders.end())
    {
        return known->second;
    }
    const std::size_t last = path.rfind('\\');
    const std::string_view name = last == std::string_view::npos ? path : path.substr(last + 1);
    std::string folder = last == std::string_view::npos ? m_root : FolderOf(path.substr(0, last));
    if (folder.empty() || name.empty())
    {
        return folder;
    }
    folder += '/' + registry::KeyFileName(name);
    if (!host_files::MakeFolder(folder))
    {
        return {};
    }
    m_folders.emplace(FoldCase(path), folder);
    return folder;
}

bool RegistrySeeder::AddKey(std::string_view path)
{
    return !FolderOf(path).empty();
}

bool RegistrySeeder::Put(std::string_view path, std::string_view name, const registry::Value& value)
{
    return Put({std::string(path), std::string(name), registry::FormatValue(value)});
}

bool RegistrySeeder::Put(const File& file)
{
    const std::string folder = FolderOf(file.path);
    return !folder.empty() && host_files::Write(folder + '/' + registry::ValueFileName(file.name), file.text);
}

bool RegistrySeeder::PutText(std::string_view path, std::string_view name, std::string_view text)
{
    return Put(path, name, registry::TextValue(text, REG_SZ));
}

bool RegistrySeeder::PutNumber(std::string_view path, std::string_view name, DWORD number)
{
    return Put(path, name, registry::NumberValue(number));
}

RegistryPut RegistrySeeder::AsPut()
{
    return [this](const std::string& path, const std::string& name, DWORD type, const void* data, DWORD size)
    {
        return Put(path, name, {type, std::string(static_cast<const char*>(data), size)});
    };
}

std::vector<RegistrySeeder::File> RegistrySeeder::Record(bool (*seed)(const RegistryPut& put))
{
    std::vector<File> files;
    seed(
        [&files](const std::string& path, const std::string& name, DWORD type, const void* data, DWORD size)
        {
            const registry::Value value{type, std::string(static_cast<const char*>(data), size)};
            files.push_back({path, name, registry::FormatValue(value)});
            return true;
        });
    return files;
}

} // namespace simulated
