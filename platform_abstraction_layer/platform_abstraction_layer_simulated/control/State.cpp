// control/State.cpp
//
// Collects files, registry and machine.ini.

#include "control/State.h"

#include "base/IniDocument.h"
#include "base/WholeFile.h"
#include "control/RegistryEditor.h"
#include "machine/Accounts.h"
#include "machine/Machine.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <sstream>
#include <string_view>

namespace simulated
{

namespace
{

constexpr std::string_view kWords = "words";

std::string Joined(std::initializer_list<std::string_view> parts)
{
    std::string text;
    for (const std::string_view part : parts)
    {
        text += part;
    }
    return text;
}

// Long prefixes of locations, and how a transcript abbreviates them. The first match counts.
struct Abbreviation
{
    std::string beginning;
    std::string shown;
};

std::vector<Abbreviation> Abbreviations()
{
    std::vector<Abbreviation> all = {
        {"WINDOWS/system32/config/systemprofile/Local Settings/Application Data/Kelvo/ORVL/Cfg/", ""},
        {"WINDOWS/system32/config/systemprofile/AppData/Local/Kelvo/ORVL/Cfg/", ""},
        {"Program Files/Kelvo/ORVL/Cfg/", ""},
        {"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls Folder\\",
         "HKLM\\...\\"},
        {"HKEY_LOCAL_MACHINE\\SYSTEM\\CurrentControlSet\\Control\\", "HKLM\\...\\"},
        {"HKEY_LOCAL_MACHINE\\", "HKLM\\"},
    };
    for (const Account& account : Accounts::All())
    {
        all.push_back(
            {"HKEY_USERS\\" + account.sid + "\\Control Panel\\", "HKU\\" + account.sid + "\\...\\"});
        all.push_back({"HKEY_USERS\\" + account.sid, "HKU\\" + account.sid});
    }
    return all;
}

// Binary values are records of 32-bit words for the most part.
std::string Words(const std::string& bytes)
{
    std::string words(kWords);
    for (std::size_t place = 0; place < bytes.size(); place += sizeof(std::uint32_t))
    {
        std::uint32_t word = 0;
        std::memcpy(&word, bytes.data() + place, std::min(sizeof word, bytes.size() - place));
        words += ' ' + std::to_string(word);
    }
    return words;
}

// Collects entries under their abbreviated locations.
class Collector
{
public:
    Collector() : m_abbreviations(Abbreviations())
    {
    }

    void Add(std::string place, const std::string& value)
    {
        for (const Abbreviation& row : m_abbreviations)
        {
            if (place.starts_with(row.beginning))
            {
                place.replace(0, row.beginning.size(), row.shown);
                break;
            }
        }
        state.try_emplace(place, value);
    }

    void AddDocument(const std::string& name, const std::string& bytes, Encoding encoding)
    {
        Add(name, "");
        for (const IniSection& section : IniDocument(bytes, encoding).Contents())
        {
            const std::string place = Joined({name, " [", section.name, "]"});
            Add(place, "");
            for (const auto& [key, value] : section.entries)
            {
                Add(Joined({place, " ", key}), value);
            }
        }
    }

    void AddFiles(const std::filesystem::path& drive)
    {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(drive))
        {
            if (entry.path().extension() == ".ini")
            {
                AddDocument(entry.path().lexically_relative(drive).string(),
                            ReadWhole(entry.path().string()).value_or(""), Encoding::Windows1252);
            }
        }
    }

    void AddKey(const std::string& key)
    {
        Add(key, "");
        for (const std::string& name : RegistryEditor::Values(key))
        {
            Add(Joined({key, " \"", name, "\""}), Show(key, name));
        }
        for (const std::string& name : RegistryEditor::Keys(key))
        {
            // The running account's hive, a second time.
            if (name != ".DEFAULT")
            {
                AddKey(Joined({key, "\\", name}));
            }
        }
    }

    State state;

private:
    // The text or the number alone where there is one.
    static std::string Show(const std::string& key, const std::string& name)
    {
        const auto value = RegistryEditor::Read(key, name).value_or(registry::Value{});
        switch (value.type)
        {
        case REG_SZ:
            return RegistryEditor::ReadText(key, name).value_or("");
        case REG_DWORD:
            return std::to_string(RegistryEditor::ReadNumber(key, name).value_or(0));
        case REG_BINARY:
            return Words(value.bytes);
        default:
            return registry::FormatValue(value);
        }
    }

    std::vector<Abbreviation> m_abbreviations;
};

// Of two lists of words those that differ, behind their offset in bytes.
std::string DifferingWords(const std::string& before, const std::string& after)
{
    std::istringstream left(before.substr(kWords.size()));
    std::istringstream right(after.substr(kWords.size()));
    std::string words;
    std::string old;
    std::string now;
    for (int offset = 0; left || right; offset += 4)
    {
        old = left >> old ? old : "nothing";
        now = right >> now ? now : "nothing";
        if (old != now)
        {
            words += Joined({" +", std::to_string(offset), ": ", old, " -> ", now});
        }
    }
    return words;
}

} // namespace

State Observe()
{
    Collector collector;
    collector.AddFiles(Machine::PathOf("drives/C"));
    collector.AddDocument("machine.ini", ReadWhole(Machine::PathOf("machine.ini")).value_or(""),
                          Encoding::Utf8);
    collector.AddKey("HKEY_LOCAL_MACHINE");
    collector.AddKey("HKEY_USERS");
    return std::move(collector.state);
}

std::vector<std::string> Differences(const State& before, const State& after)
{
    std::vector<std::string> lines;
    std::string gone;
    for (const auto& [place, value] : before)
    {
        const auto now = after.find(place);
        if (now == after.end())
        {
            // What vanishes with its key or section needs no line.
            if (gone.empty() || !place.starts_with(gone))
            {
                gone = place;
                lines.push_back("- " + place);
            }
        }
        else if (value.starts_with(kWords) && now->second.starts_with(kWords) && value != now->second)
        {
            lines.push_back(place + DifferingWords(value, now->second));
        }
        else if (value != now->second)
        {
            lines.push_back(Joined({place, ": ", value, " -> ", now->second}));
        }
    }
    for (const auto& [place, value] : after)
    {
        if (!before.contains(place))
        {
            lines.push_back("+ " + place + (value.empty() ? "" : ": " + value));
        }
    }
    return lines;
}

} // namespace simulated
