// base/IniDocument.h
//
// The text of a file with sections and "key=value" lines: looking up, listing, and changes that leave every
// other byte as it is. Knows nothing of files, locks or buffers. Nothing is parsed in advance: a lookup
// scans the lines once.
//
// Sections and keys ignore case and the blanks around them; of duplicates the first counts. A line without
// "=" is no key, one that begins with ";" is a comment. CRLF, CR and LF end lines. Arguments and results
// are UTF-8.
#pragma once

#include "base/CodePage.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace simulated
{

/// A section as it stands in the file.
struct IniSection
{
    std::string name;
    std::vector<std::pair<std::string, std::string>> entries; ///< keys and values
};

class IniDocument
{
public:
    /// `bytes` are UTF-16 when they begin with its little-endian mark, else in `narrow`.
    IniDocument(std::string_view bytes, Encoding narrow);

    /// The text behind the "=", without the blanks around it; cut at a NUL.
    std::optional<std::string> Value(std::string_view section, std::string_view key) const;

    /// Everything, in the order of the file, duplicates included. For those who look up much.
    std::vector<IniSection> Contents() const;

    /// Replaces what stands behind the key's "=", or adds the key behind the last line of its section, or a
    /// section at the end.
    void Set(std::string_view section, std::string_view key, std::string_view value);

    /// Removes the key's line, or the section from its header up to the next one, where there is one.
    void Remove(std::string_view section, std::string_view key);
    void Remove(std::string_view section);

    /// What is to be written to the file.
    std::string Bytes() const;

private:
    struct Line;
    struct Section;

    Line LineAt(std::size_t begin) const noexcept;
    bool IsName(std::string_view text, std::string_view name) const;
    std::string Text(std::string_view text) const;
    std::optional<Section> Find(std::string_view section, std::string_view key = {}) const;
    void InsertLines(std::size_t place, std::string_view lines);

    bool m_isUtf16;
    Encoding m_encoding; ///< of `m_text`
    std::string m_text;  ///< of a UTF-16 file as UTF-8, else the file's bytes
};

} // namespace simulated
