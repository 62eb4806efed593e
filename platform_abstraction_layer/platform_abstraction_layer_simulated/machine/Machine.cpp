// machine/Machine.cpp
//
// The notebook's folder and machine.ini.

#include "machine/Machine.h"

#include "base/ChangeCount.h"
#include "base/HexText.h"
#include "base/IniDocument.h"
#include "base/Text.h"
#include "machine/CachedFile.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <mutex>

namespace simulated
{

namespace
{

// Nothing can exist below it: a process without a notebook finds an empty machine and can't write.
constexpr const char* kNoNotebook = "/dev/null";
constexpr const char* kServiceAccount = "SYSTEM";
constexpr const char* kStateFile = "machine.ini";

const char* FromEnvironment(const char* name, const char* otherwise)
{
    const char* const value = std::getenv(name);
    return value == nullptr || *value == 0 ? otherwise : value;
}

struct Section
{
    std::vector<std::string> keys;
    std::map<std::string, std::string> values; ///< by folded key
};

// machine.ini and an index of its entries.
struct Content
{
    IniDocument document{{}, Encoding::Utf8};
    std::vector<std::string> order;
    std::map<std::string, Section> sections; ///< by folded name

    void Load(const std::string& text);
    std::string Text() const
    {
        return document.Bytes();
    }
    const Section* Find(std::string_view name) const;
};

struct MachineState
{
    std::mutex mutex;
    std::string folder;
    std::string absolute; ///< made of `absoluteOf`
    std::string absoluteOf;
    std::string account;
    CachedFile<Content> file{std::string(kStateFile)};

    /// The folder as it was chosen; the mutex is held.
    const char* Folder() const
    {
        return folder.empty() ? FromEnvironment("SIM_NOTEBOOK", kNoNotebook) : folder.c_str();
    }

    /// Makes `absolute` of the folder; the mutex is held.
    void Resolve()
    {
        std::error_code ignored;
        absoluteOf = Folder();
        absolute = std::filesystem::absolute(absoluteOf, ignored).lexically_normal().string();
        ChangeCount::Use(absolute);
    }
};

// Never destroyed: threads may outlive the library's teardown.
MachineState& TheMachineState()
{
    static MachineState& state = *new MachineState;
    return state;
}

void Content::Load(const std::string& text)
{
    document = IniDocument(text, Encoding::Utf8);
    order.clear();
    sections.clear();
    for (IniSection& found : document.Contents())
    {
        const auto [place, isNew] = sections.try_emplace(FoldCase(found.name));
        if (!isNew)
        {
            continue; // the first of a name counts
        }
        order.push_back(found.name);
        Section& section = place->second;
        for (auto& [key, value] : found.entries)
        {
            if (section.values.try_emplace(FoldCase(key), std::move(value)).second)
            {
                section.keys.push_back(std::move(key));
            }
        }
    }
}

const Section* Content::Find(std::string_view name) const
{
    const auto found = sections.find(FoldCase(name));
    return found == sections.end() ? nullptr : &found->second;
}

template <class Look>
auto ReadState(Look look)
{
    return TheMachineState().file.Read(look);
}

template <class Change>
bool Edit(Change change)
{
    return TheMachineState().file.Edit(
        [&](Content& content)
        {
            IniDocument document = content.document;
            change(document);
            const bool isChanged = document.Bytes() != content.Text();
            if (isChanged)
            {
                content.Load(document.Bytes());
            }
            return isChanged;
        });
}

} // namespace

std::string Machine::Folder()
{
    MachineState& state = TheMachineState();
    const std::lock_guard lock(state.mutex);
    return state.Folder();
}

void Machine::Use(const std::string& folder)
{
    MachineState& state = TheMachineState();
    const std::lock_guard lock(state.mutex);
    state.folder = folder;
    state.Resolve();
}

std::string Machine::PathOf(std::string_view part)
{
    MachineState& state = TheMachineState();
    const std::lock_guard lock(state.mutex);
    if (state.absoluteOf != state.Folder())
    {
        state.Resolve();
    }
    std::string path = state.absolute;
    path += '/';
    return path += part;
}

std::string Machine::Account()
{
    MachineState& state = TheMachineState();
    const std::lock_guard lock(state.mutex);
    return state.account.empty() ? FromEnvironment("SIM_ACCOUNT", kServiceAccount) : state.account;
}

void Machine::RunAs(const std::string& account)
{
    MachineState& state = TheMachineState();
    const std::lock_guard lock(state.mutex);
    state.account = account;
}

std::optional<std::string> Machine::Read(std::string_view section, std::string_view key)
{
    return ReadState(
        [&](const Content& content) -> std::optional<std::string>
        {
            const Section* const found = content.Find(section);
            if (found == nullptr)
            {
                return std::nullopt;
            }
            const auto value = found->values.find(FoldCase(key));
            return value == found->values.end() ? std::nullopt : std::optional(value->second);
        });
}

std::string Machine::Read(std::string_view section, std::string_view key, std::string_view otherwise)
{
    return Read(section, key).value_or(std::string(otherwise));
}

std::uint64_t Machine::ReadNumber(std::string_view section, std::string_view key, std::uint64_t otherwise)
{
    return ReadNumber(section, key).value_or(otherwise);
}

std::optional<std::uint64_t> Machine::ReadNumber(std::string_view section, std::string_view key)
{
    return ParseNumber(Read(section, key, {}));
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

std::vector<std::string> Machine::Sections(std::string_view prefix)
{
    return ReadState(
        [&](const Content& content)
        {
            std::vector<std::string> names;
            for (const std::string& name : content.order)
            {
                if (name.size() > prefix.size() && EqualIgnoringCase(name.substr(0, prefix.size()), prefix))
                {
                    names.push_back(name.substr(prefix.size()));
                }
            }
            return names;
        });
}

std::vector<std::string> Machine::Keys(std::string_view section)
{
    return ReadState(
        [&](const Content& content)
        {
            const Section* const found = content.Find(section);
            return found == nullptr ? std::vector<std::string>() : found->keys;
        });
}

Encoding Machine::AnsiEncoding()
{
    return EncodingOf(static_cast<unsigned>(ReadNumber("Machine", "AnsiCodePage", 0)));
}

} // namespace simulated
