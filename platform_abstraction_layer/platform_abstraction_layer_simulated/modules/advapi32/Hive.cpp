// modules/advapi32/Hive.cpp
//
// A hive in memory, and its text.

#include "modules/advapi32/Hive.h"

#include "base/Text.h"

#include <algorithm>
#include <atomic>

namespace simulated::registry
{

namespace
{

constexpr std::string_view kHeader = "Windows Registry Editor Version 5.00\n";
constexpr char kSeparator = '\\';
constexpr char kSeparatorInOrder = '\1'; // before all characters of names, so that subkeys follow their key

std::atomic<std::uint64_t> lastId{0};

// What the map of keys is ordered by.
std::string Ordered(std::string_view path)
{
    std::string folded = FoldCase(path);
    std::replace(folded.begin(), folded.end(), kSeparator, kSeparatorInOrder);
    return folded;
}

// What all keys below `path` begin with in order.
std::string OrderedBegin(std::string_view path)
{
    return path.empty() ? std::string() : Ordered(path) + kSeparatorInOrder;
}

std::string_view TakeLine(std::string_view& text)
{
    std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    line.remove_suffix(line.ends_with('\r') ? 1 : 0);
    return line;
}

// The value at the beginning of `text`, which moves behind it, also over the line ends inside.
std::string_view TakeValue(std::string_view& text)
{
    const std::string_view begin = text;
    TakeQuoted(text);
    std::string_view line = TakeLine(text);
    while (line.ends_with(kSeparator) && !text.empty())
    {
        line = TakeLine(text);
    }
    return begin.substr(0, static_cast<std::size_t>(line.data() + line.size() - begin.data()));
}

// The name of the value at the beginning of `text`, which moves behind its equals sign.
std::optional<std::string> TakeName(std::string_view& text)
{
    std::string_view rest = text;
    std::optional<std::string> name;
    if (rest.starts_with('@'))
    {
        rest.remove_prefix(1);
        name.emplace();
    }
    else
    {
        name = TakeQuoted(rest);
    }
    if (!name || !rest.starts_with('='))
    {
        return std::nullopt;
    }
    text = rest.substr(1);
    return name;
}

void Append(std::string& text, const HiveValue& value)
{
    text += value.name.empty() ? "@" : Quote(value.name);
    text += '=';
    text += value.text;
    text += '\n';
}

} // namespace

const HiveValue* HiveKey::Find(std::string_view name) const
{
    const auto found = values.find(FoldCase(name));
    return found == values.end() ? nullptr : &found->second;
}

void HiveKey::Put(std::string_view name, std::string_view text)
{
    values.try_emplace(FoldCase(name), HiveValue{std::string(name), {}}).first->second.text = text;
}

Hive::Hive(std::string_view root) : m_root(root), m_keys{{"", HiveKey{}}}
{
}

void Hive::Load(std::string_view text)
{
    std::map<std::string, HiveKey> earlier;
    earlier.swap(m_keys);
    HiveKey* key = nullptr;
    while (!text.empty())
    {
        const std::optional<std::string> name = key == nullptr ? std::nullopt : TakeName(text);
        if (name)
        {
            key->Put(*name, TakeValue(text));
            continue;
        }
        const std::string_view line = TakeLine(text);
        if (line.starts_with('[') && line.ends_with(']'))
        {
            const std::string_view path = line.substr(1, line.size() - 2);
            m_root = path.substr(0, path.find(kSeparator));
            key = &Make(path.substr(std::min(m_root.size() + 1, path.size())));
        }
    }
    for (auto& [place, loaded] : m_keys)
    {
        const auto same = earlier.find(place);
        loaded.id = same == earlier.end() ? loaded.id : same->second.id;
    }
}

std::string Hive::Text() const
{
    std::string text(kHeader);
    for (const auto& [place, key] : m_keys)
    {
        text += "\n[";
        text += m_root;
        text += key.path.empty() ? "" : "\\";
        text += key.path;
        text += "]\n";
        for (const auto& [folded, value] : key.values)
        {
            Append(text, value);
        }
    }
    return text;
}

const HiveKey* Hive::Find(std::string_view path) const
{
    const auto found = m_keys.find(Ordered(path));
    return found == m_keys.end() ? nullptr : &found->second;
}

HiveKey& Hive::Make(std::string_view path)
{
    const std::string place = Ordered(path);
    if (const auto found = m_keys.find(place); found != m_keys.end())
    {
        return found->second;
    }
    if (path.empty())
    {
        return m_keys[place];
    }
    const std::size_t last = path.rfind(kSeparator);
    const bool isTop = last == std::string_view::npos;
    const std::string& above = Make(isTop ? std::string_view() : path.substr(0, last)).path;
    std::string spelled = isTop ? std::string() : above + kSeparator;
    spelled += isTop ? path : path.substr(last + 1);
    return m_keys.emplace(place, HiveKey{std::move(spelled), ++lastId}).first->second;
}

void Hive::Put(std::string_view path, std::string_view name, const Value& value)
{
    Make(path).Put(name, FormatValue(value));
}

void Hive::Remove(std::string_view path)
{
    m_keys.erase(Ordered(path));
}

std::vector<std::string> Hive::Subkeys(std::string_view path) const
{
    std::vector<std::string> names;
    const std::string begin = OrderedBegin(path);
    for (auto at = m_keys.lower_bound(begin); at != m_keys.end() && at->first.starts_with(begin); ++at)
    {
        const bool isBelow = at->first.size() > begin.size();
        if (isBelow && at->first.find(kSeparatorInOrder, begin.size()) == std::string::npos)
        {
            const std::string& whole = at->second.path;
            names.push_back(whole.substr(path.empty() ? 0 : whole.rfind(kSeparator) + 1));
        }
    }
    return names;
}

} // namespace simulated::registry
