// modules/advapi32/Hive.h
//
// The keys and values of one hive, and the text of its file: a registry export as the registry editor of
// Windows writes it, but in UTF-8. Paths are below the hive's root, whose own path is empty; names and paths
// ignore case and keep the spelling that they were made with.
//
// A value stays the text that it is in the file until somebody reads it. What is neither a key nor a value of
// one is left out when the text is written again.
#pragma once

#include "modules/advapi32/ValueText.h"

#include <map>
#include <vector>

namespace simulated::registry
{

struct HiveValue
{
    std::string name;
    std::string text; ///< in one of the forms of ValueText.h, unless somebody has damaged it
};

struct HiveKey
{
    std::string path;
    std::uint64_t id = 0; ///< distinguishes a key from an earlier one at its path; 0 for the root
    std::map<std::string, HiveValue> values = {}; ///< by folded name

    const HiveValue* Find(std::string_view name) const;
    void Put(std::string_view name, std::string_view text);
};

class Hive
{
public:
    /// A hive without any key, as from a file that isn't there.
    Hive() = default;

    /// A hive of the root key alone, which is called `root` in the file.
    explicit Hive(std::string_view root);

    /// Loads `text`. A key that exists before and after keeps its id.
    void Load(std::string_view text);
    std::string Text() const;

    const HiveKey* Find(std::string_view path) const;

    /// The key at `path`, made with all above it when it isn't there.
    HiveKey& Make(std::string_view path);
    void Put(std::string_view path, std::string_view name, const Value& value);
    void Remove(std::string_view path);

    /// The names of the keys one level below `path`, in order.
    std::vector<std::string> Subkeys(std::string_view path) const;

private:
    std::string m_root;
    std::map<std::string, HiveKey> m_keys; ///< by path, see `Ordered`
};

} // namespace simulated::registry
