// base/IniDocument.h
//
// The text of a file with sections and "key=value" lines: looking up, listing, and changes that leave every
// other byte as it is. Knows nothing of files, locks or buffers. Nothing is parsed in advance: a look-up
// walks the lines once.
//
// Sections and keys ignore case and the blanks around them; of duplicates the first counts. A line without
// "=" is no key, one that begins with ";" is a comment. CRLF, CR and LF end lines. What is asked for and
// answered is UTF-8.
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
    IniDocument(std::string bytes, Encoding narrow);

    /// The text behind the "=", without the blanks around it; cut at a NUL.
    std::optional<std::string> Value(std::string_view section, std::string_view key) const;

    /// Everything, in the order of the file, duplicates included. For those who look up much.
    std::vector<IniSection> Contents() const;

    /// Replaces what stands behind the key's "=", or adds the key behind the last line of its section, or a
    /// section at the end.
    void Set(std::string_view section, std::string_view key, std::string_view value);

    /// Removes the key's line, or the section from its header up to the next one. False when there is none.
    bool Remove(std::string_view section, std::string_view key);
    bool Remove(std::string_view section);

    const std::string& Bytes() const noexcept
    {
        return m_bytes;
    }

private:
    /// A stretch of the bytes.
    struct Span
    {
        std::size_t begin;
        std::size_t end;
    };
    struct Line
    {
        Span text;
        std::size_t next; ///< behind the line's end
    };
    struct Header
    {
        Line line;
        Span name;
    };
    enum class Kind
    {
        Header,
        Entry,
        Blank,
        Other ///< a comment, or nothing that means anything
    };
    struct Parsed
    {
        Kind kind;
        Span name;  ///< of a header or an entry, blanks trimmed
        Span value; ///< of an entry, everything behind the "="
    };
    struct Section
    {
        std::size_t begin;
        std::size_t body;
        std::size_t end;
    };

    std::size_t Start() const noexcept;
    std::size_t End() const noexcept;
    unsigned UnitAt(std::size_t place) const noexcept;
    Line LineAt(std::size_t begin) const noexcept;
    Parsed Parse(Span line) const noexcept;
    std::optional<Header> NextHeader(std::size_t begin) const noexcept;
    std::size_t Find(char character, Span span) const noexcept;
    Span Trim(Span span) const noexcept;
    std::string Text(Span span) const;
    bool IsName(Span span, std::string_view name) const;
    std::optional<Section> FindSection(std::string_view name) const;
    std::optional<Line> FindKey(const Section& section, std::string_view key) const;
    template <class Visit>
    void Walk(std::size_t begin, std::size_t end, Visit visit) const;
    void InsertLines(std::size_t place, std::string_view lines);

    std::string m_bytes;
    Encoding m_encoding;
    std::size_t m_width; ///< bytes of a unit
};

} // namespace simulated
