// advapi32/RegistryNames.h
//
// What keys and values are called in the host's file system. A key is a folder of its own name; a value is a
// file whose name begins with "=", so that the two can't collide, and the default value is the file "=".
// Characters that a file name can't hold stand as "%" and two hexadecimal digits.
//
// Known difference from Windows: a name can't be used whose encoded form has more than 255 bytes, of a value
// more than 240.
#pragma once

#include <windef.h>

#include <string>
#include <string_view>
#include <vector>

namespace simulated::registry
{

/// The names of the files of a key and of a value; empty when the name is too long or can't be one.
std::string KeyFileName(std::string_view name);
std::string ValueFileName(std::string_view name);

/// The name of the key that has this folder.
std::string KeyName(std::string_view fileName);

/// The parts of a subkey path. Doubled backslashes count once, one at the end not at all.
std::vector<std::string> SplitPath(std::string_view path);

struct Entry
{
    std::string fileName;
    std::string name;
};

enum class EntryKind
{
    Key,
    Value
};

/// The keys or the values in the folder `path`, in the order of their names without regard to case.
std::vector<Entry> List(const std::string& path, EntryKind kind);

/// The name of the file in the folder `path` that is spelled like `fileName` but for case; empty when there
/// is none. Both kinds can be looked for.
std::string FindIgnoringCase(const std::string& path, std::string_view fileName);

} // namespace simulated::registry
