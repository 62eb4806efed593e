// advapi32/RegistryNames.cpp
//
// Names of keys and values as file names, and folders looked through by them.

#include "advapi32/RegistryNames.h"

#include "notebook/Text.h"
#include "notebook/WholeFile.h"

#include <algorithm>
#include <dirent.h>
#include <memory>

namespace simulated::registry
{

namespace
{

// The file system's limit, and that of a file whose name gets some characters more while it is being written.
constexpr std::size_t kLongestFolderName = 255;
constexpr std::size_t kLongestFileName = 240;
constexpr char kValueMark = '=';
constexpr char kEscape = '%';
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

bool NeedsEscape(char character) noexcept
{
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0x7F || character == kEscape || character == '/';
}

void AppendEscaped(std::string& to, char character)
{
    const auto byte = static_cast<unsigned char>(character);
    to += kEscape;
    to += kHexDigits[byte >> 4];
    to += kHexDigits[byte & 15];
}

std::string Encode(std::string encoded, std::string_view name, std::size_t longest)
{
    for (const char character : name)
    {
        if (NeedsEscape(character))
        {
            AppendEscaped(encoded, character);
        }
        else
        {
            encoded += character;
        }
    }
    return encoded.size() > longest ? std::string() : encoded;
}

std::string DecodeName(std::string_view encoded)
{
    std::string name;
    for (std::size_t at = 0; at < encoded.size(); ++at)
    {
        const std::size_t high =
            at + 2 < encoded.size() ? kHexDigits.find(encoded[at + 1]) : std::string_view::npos;
        const std::size_t low =
            at + 2 < encoded.size() ? kHexDigits.find(encoded[at + 2]) : std::string_view::npos;
        if (encoded[at] == kEscape && high != std::string_view::npos && low != std::string_view::npos)
        {
            name += static_cast<char>(high << 4 | low);
            at += 2;
        }
        else
        {
            name += encoded[at];
        }
    }
    return name;
}

struct CloseFolder
{
    void operator()(DIR* folder) const noexcept
    {
        closedir(folder);
    }
};

// Calls `visit` with the name of each key and value of a folder until it answers false.
template <class Visit>
void Walk(const std::string& path, Visit visit)
{
    const std::unique_ptr<DIR, CloseFolder> folder(opendir(path.c_str()));
    while (const dirent* const entry = folder == nullptr ? nullptr : readdir(folder.get()))
    {
        const std::string_view name = entry->d_name;
        if (name != "." && name != ".." && !IsHousekeepingName(name) && !visit(name))
        {
            return;
        }
    }
}

// Windows orders names by their units as capital letters, so "_" stands behind "Z".
bool IsBefore(const Entry& left, const Entry& right)
{
    const std::vector<wchar_t> one = ToUtf16(left.name);
    const std::vector<wchar_t> other = ToUtf16(right.name);
    return std::lexicographical_compare(one.begin(), one.end(), other.begin(), other.end(),
                                        [](wchar_t first, wchar_t second)
                                        { return FoldCase(first) < FoldCase(second); });
}

} // namespace

std::string KeyFileName(std::string_view name)
{
    // These beginnings would mean something else to the file system, to the values' mark or to WholeFile.
    const bool isReserved =
        name == "." || name == ".." || name.starts_with(".~") || name.starts_with(kValueMark);
    std::string begin;
    if (isReserved)
    {
        AppendEscaped(begin, name.front());
        name.remove_prefix(1);
    }
    return Encode(begin, name, kLongestFolderName);
}

std::string KeyName(std::string_view fileName)
{
    return DecodeName(fileName);
}

std::string ValueFileName(std::string_view name)
{
    return Encode(std::string(1, kValueMark), name, kLongestFileName);
}

std::vector<std::string> SplitPath(std::string_view path)
{
    std::vector<std::string> parts;
    while (!path.empty())
    {
        const std::size_t length = std::min(path.find('\\'), path.size());
        if (length != 0)
        {
            parts.emplace_back(path.substr(0, length));
        }
        path.remove_prefix(std::min(length + 1, path.size()));
    }
    return parts;
}

std::vector<Entry> List(const std::string& path, EntryKind kind)
{
    std::vector<Entry> entries;
    Walk(path,
         [&](std::string_view fileName)
         {
             if (fileName.starts_with(kValueMark) == (kind == EntryKind::Value))
             {
                 const std::string_view name = kind == EntryKind::Value ? fileName.substr(1) : fileName;
                 entries.push_back({std::string(fileName), DecodeName(name)});
             }
             return true;
         });
    std::sort(entries.begin(), entries.end(), IsBefore);
    return entries;
}

std::string FindIgnoringCase(const std::string& path, std::string_view fileName)
{
    std::string found;
    Walk(path,
         [&](std::string_view candidate)
         {
             if (EqualIgnoringCase(candidate, fileName))
             {
                 found = candidate;
             }
             return found.empty();
         });
    return found;
}

} // namespace simulated::registry
