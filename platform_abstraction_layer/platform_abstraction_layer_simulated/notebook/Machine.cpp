// notebook/Machine.cpp
//
// The notebook's folder and machine.ini. The file is parsed once for each state that it has been in; whether
// it has changed is asked of the file system at each look-up.

#include "notebook/Machine.h"

#include "notebook/IniDocument.h"
#include "notebook/Text.h"
#include "notebook/WholeFile.h"

#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <sys/stat.h>

namespace simulated
{

namespace
{

// Below it nothing can exist: a process that was told of no notebook finds an empty machine and can't write.
constexpr const char* kNoNotebook = "/dev/null";
constexpr const char* kServiceAccount = "SYSTEM";
constexpr const char* kStateFile = "machine.ini";

// What tells one state of a file from another.
struct FileState
{
    std::string path;
    dev_t device = 0;
    ino_t inode = 0;
    off_t size = 0;
    timespec changed = {};

    bool operator==(const FileState& other) const
    {
        return path == other.path && device == other.device && inode == other.inode && size == other.size &&
               changed.tv_sec == other.changed.tv_sec && changed.tv_nsec == other.changed.tv_nsec;
    }
};

struct Section
{
    std::string name;
    std::vector<std::string> keys;
    std::map<std::string, std::string> values; ///< by folded key
};

// machine.ini as it was read.
struct Content
{
    std::vector<std::string> order;
    std::map<std::string, Section> sections; ///< by folded name
};

struct State
{
    std::mutex mutex;
    std::string folder;
    std::string account;
    FileState parsedFrom;
    std::shared_ptr<const Content> content;
};

// Never destroyed: threads may outlive the library's teardown.
State& TheState()
{
    static State& state = *new State;
    return state;
}

FileState StateOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
    {
        return {path, 0, 0, -1, {}};
    }
    return {path, status.st_dev, status.st_ino, status.st_size, status.st_mtim};
}

std::shared_ptr<const Content> ParseContent(const std::string& path)
{
    auto content = std::make_shared<Content>();
    const IniDocument document(ReadWhole(path).value_or(std::string()), Encoding::Utf8);
    for (IniSection& found : document.Contents())
    {
        const auto [place, isNew] =
            content->sections.try_emplace(FoldCase(found.name), Section{found.name, {}, {}});
        if (!isNew)
        {
            continue; // the first of a name counts
        }
        content->order.push_back(found.name);
        Section& section = place->second;
        for (auto& [key, value] : found.entries)
        {
            if (section.values.try_emplace(FoldCase(key), std::move(value)).second)
            {
                section.keys.push_back(std::move(key));
            }
        }
    }
    return content;
}

std::string StatePath()
{
    return Machine::PathOf(kStateFile);
}

std::shared_ptr<const Content> Current()
{
    const std::string path = StatePath();
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    const FileState now = StateOf(path);
    if (!state.content || !(now == state.parsedFrom))
    {
        // The state was taken before the reading: a change in between is noticed by the next look-up.
        state.content = ParseContent(path);
        state.parsedFrom = now;
    }
    return state.content;
}

const Section* Find(const Content& content, std::string_view name)
{
    const auto found = content.sections.find(FoldCase(name));
    return found == content.sections.end() ? nullptr : &found->second;
}

// Lets `change` edit the document under the writers' lock; nothing is written when that leaves it as it was.
template <class Change>
bool Edit(Change change)
{
    const std::string path = StatePath();
    const FileLock lock(path);
    if (!lock.IsHeld())
    {
        return false;
    }
    const std::string before = ReadWhole(path).value_or(std::string());
    IniDocument document(before, Encoding::Utf8);
    change(document);
    return document.Bytes() == before || WriteWhole(path, document.Bytes());
}

std::string FromEnvironment(const char* name, const char* otherwise)
{
    const char* const value = std::getenv(name);
    return value == nullptr || *value == 0 ? otherwise : value;
}

} // namespace

std::string Machine::Folder()
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.folder.empty() ? FromEnvironment("SIM_NOTEBOOK", kNoNotebook) : state.folder;
}

void Machine::Use(const std::string& folder)
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.folder = folder;
}

std::string Machine::PathOf(std::string_view part)
{
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::absolute(Folder(), ignored);
    return (folder / part).lexically_normal().string();
}

std::string Machine::Account()
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    return state.account.empty() ? FromEnvironment("SIM_ACCOUNT", kServiceAccount) : state.account;
}

void Machine::RunAs(const std::string& account)
{
    State& state = TheState();
    const std::lock_guard lock(state.mutex);
    state.account = account;
}

std::optional<std::string> Machine::Read(std::string_view section, std::string_view key)
{
    const std::shared_ptr<const Content> content = Current();
    const Section* const found = Find(*content, section);
    if (found == nullptr)
    {
        return std::nullopt;
    }
    const auto value = found->values.find(FoldCase(key));
    return value == found->values.end() ? std::nullopt : std::optional(value->second);
}

std::string Machine::Read(std::string_view section, std::string_view key, std::string_view otherwise)
{
    return Read(section, key).value_or(std::string(otherwise));
}

std::uint64_t Machine::ReadNumber(std::string_view section, std::string_view key, std::uint64_t otherwise)
{
    const std::string text = Read(section, key, {});
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    const char* const begin = text.data() + (isHex ? 2 : 0);
    const char* const end = text.data() + text.size();
    std::uint64_t number = 0;
    const auto [stopped, problem] = std::from_chars(begin, end, number, isHex ? 16 : 10);
    return problem == std::errc() && stopped == end ? number : otherwise;
}

bool Machine::Write(std::string_view section, std::string_view key, std::string_view value)
{
    return Edit([&](IniDocument& document) { document.Set(section, key, value); });
}

bool Machine::Write(std::string_view section, const Entries& entries)
{
    return Edit(
        [&](IniDocument& document)
        {
            for (const auto& [key, value] : entries)
            {
                document.Set(section, key, value);
            }
        });
}

bool Machine::WriteNumber(std::string_view section, std::string_view key, std::uint64_t value)
{
    return Write(section, key, std::to_string(value));
}

bool Machine::Remove(std::string_view section)
{
    return Edit([&](IniDocument& document) { return document.Remove(section); });
}

bool Machine::Remove(std::string_view section, std::string_view key)
{
    return Edit([&](IniDocument& document) { return document.Remove(section, key); });
}

std::vector<std::string> Machine::Sections()
{
    return Current()->order;
}

std::vector<std::string> Machine::Keys(std::string_view section)
{
    const std::shared_ptr<const Content> content = Current();
    const Section* const found = Find(*content, section);
    return found == nullptr ? std::vector<std::string>() : found->keys;
}

} // namespace simulated
