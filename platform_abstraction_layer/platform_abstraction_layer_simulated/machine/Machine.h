// machine/Machine.h
//
// The folder of the simulated notebook and its machine.ini. All processes on one notebook share the
// folder; a change is seen by the next reader, whole or not at all.
#pragma once

#include "base/CodePage.h"

#include <windef.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simulated
{

class Machine
{
public:
    /// The notebook's folder: what `Use` named, else the environment variable SIM_NOTEBOOK.
    static std::string Folder();

    /// Chooses the notebook of this process.
    static void Use(const std::string& folder);

    /// "drives/C", "registry" or "objects" below the folder, absolute.
    static std::string PathOf(std::string_view part);

    /// The account that this process runs as: what `RunAs` named, else SIM_ACCOUNT, else the machine's
    /// service account ("SYSTEM").
    static std::string Account();
    static void RunAs(const std::string& account);

    /// A value of machine.ini; section and key ignore case.
    static std::optional<std::string> Read(std::string_view section, std::string_view key);
    static std::string Read(std::string_view section, std::string_view key, std::string_view otherwise);
    static std::uint64_t ReadNumber(std::string_view section, std::string_view key, std::uint64_t otherwise);
    static std::optional<std::uint64_t> ReadNumber(std::string_view section, std::string_view key);

    /// Changes machine.ini whole; the next reader in any process sees it. False when it can't be written.
    static bool Write(std::string_view section, std::string_view key, std::string_view value);
    static bool WriteNumber(std::string_view section, std::string_view key, std::uint64_t value);

    /// The same for what belongs together: a reader sees all of it changed or nothing.
    using Entries = std::vector<std::pair<std::string, std::string>>; ///< keys and values
    static bool Write(std::string_view section, const Entries& entries);
    static bool Remove(std::string_view section);
    static bool Remove(std::string_view section, std::string_view key);

    /// Names in the order of the file. Of sections those that begin with `prefix`, without it.
    static std::vector<std::string> Sections(std::string_view prefix);
    static std::vector<std::string> Keys(std::string_view section);

    /// The encoding of narrow text: section "Machine", key "AnsiCodePage", which is 1252 or 65001.
    static Encoding AnsiEncoding();
};

} // namespace simulated
