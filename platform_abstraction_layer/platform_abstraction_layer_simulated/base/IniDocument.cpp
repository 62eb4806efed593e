// base/IniDocument.cpp
//
// Finds lines, and edits the text there.

#include "base/IniDocument.h"

#include "base/Text.h"

#include <algorithm>

namespace simulated
{

namespace
{

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kLineEnd = "\r\n";

constexpr bool IsBlank(char character)
{
    return character == ' ' || character == '\t' || character == '\v' || character == '\f';
}

// Called for every line that is looked at; the standard searches for one of several characters are
// slow.
std::string_view Trim(std::string_view text)
{
    while (!text.empty() && IsBlank(text.front()))
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back()))
    {
        text.remove_suffix(1);
    }
    return text;
}

} // namespace

struct IniDocument::Line
{
    enum class Kind
    {
        Header,
        Entry,
        Blank,
        Other ///< a comment or anything else without a meaning
    };
    Kind kind;
    std::string_view name;  ///< of a header or an entry, blanks trimmed
    std::string_view value; ///< of an entry, everything behind the "="
    std::size_t next;       ///< where the line behind it begins
};

// Where a section stands, and what was looked for in it.
struct IniDocument::Section
{
    std::size_t begin;
    std::size_t lastEnd; ///< behind the last line that isn't blank
    std::size_t end;     ///< where the next header begins
    std::size_t keyBegin = 0;
    std::optional<Line> key = {};
};

IniDocument::IniDocument(std::string_view bytes, Encoding narrow)
    : m_isUtf16(bytes.starts_with(kUtf16Mark)), m_encoding(m_isUtf16 ? Encoding::Utf8 : narrow),
      m_text(m_isUtf16 ? Decode(Encoding::Utf16, bytes.substr(kUtf16Mark.size())) : bytes)
{
}

std::string IniDocument::Bytes() const
{
    return m_isUtf16 ? std::string(kUtf16Mark) + Encode(Encoding::Utf16, m_text) : m_text;
}

IniDocument::Line IniDocument::LineAt(std::size_t begin) const noexcept
{
    const std::string_view rest = std::string_view(m_text).substr(begin);
    const std::string_view upToFeed = rest.substr(0, rest.find('\n'));
    const std::size_t size = std::min(upToFeed.find('\r'), upToFeed.size());
    const std::size_t endSize = rest.substr(size).starts_with(kLineEnd) ? 2 : size < rest.size();
    const std::size_t next = begin + size + endSize;
    const std::string_view line = rest.substr(0, size);
    const std::string_view text = Trim(line);
    if (text.empty())
    {
        return {Line::Kind::Blank, {}, {}, next};
    }
    // Text behind the last bracket is ignored; a line without a bracket is no header.
    const std::size_t bracket = text.front() == '[' ? text.rfind(']') : std::string_view::npos;
    if (bracket != std::string_view::npos)
    {
        return {Line::Kind::Header, Trim(text.substr(1, bracket - 1)), {}, next};
    }
    const std::size_t equals = line.find('=');
    if (text.front() == ';' || equals == std::string_view::npos)
    {
        return {Line::Kind::Other, {}, {}, next};
    }
    return {Line::Kind::Entry, Trim(line.substr(0, equals)), line.substr(equals + 1), next};
}

std::string IniDocument::Text(std::string_view text) const
{
    return Decode(m_encoding, text.substr(0, text.find('\0')));
}

bool IniDocument::IsName(std::string_view text, std::string_view name) const
{
    // Most names are plain; only one with other characters is decoded.
    const bool isPlain = std::all_of(text.begin(), text.end(), [](char byte) { return byte > 0; });
    return isPlain ? text.size() == name.size() && EqualIgnoringCase(text, name)
                   : EqualIgnoringCase(Text(text), name);
}

std::optional<IniDocument::Section> IniDocument::Find(std::string_view section, std::string_view key) const
{
    const std::string_view wantedSection = Trim(section);
    const std::string_view wantedKey = Trim(key);
    std::optional<Section> found;
    for (std::size_t place = 0; place < m_text.size();)
    {
        if (!found)
        {
            // Only a line with a bracket can be the header; most others aren't looked at.
            const std::size_t bracket = std::min(m_text.find('[', place), m_text.size());
            const std::size_t lineBegin = m_text.find_last_of(kLineEnd, bracket) + 1; // 0 in the first line
            place = std::max(place, lineBegin);
        }
        const Line line = LineAt(place);
        if (line.kind == Line::Kind::Header)
        {
            if (found)
            {
                return found;
            }
            if (IsName(line.name, wantedSection))
            {
                found = Section{place, line.next, line.next};
            }
        }
        else if (found)
        {
            if (line.kind == Line::Kind::Entry && !found->key && IsName(line.name, wantedKey))
            {
                found->keyBegin = place;
                found->key = line;
            }
            found->lastEnd = line.kind == Line::Kind::Blank ? found->lastEnd : line.next;
        }
        place = line.next;
        if (found)
        {
            found->end = place;
        }
    }
    return found;
}

std::optional<std::string> IniDocument::Value(std::string_view section, std::string_view key) const
{
    const std::optional<Section> found = Find(section, key);
    return found && found->key ? std::optional(Text(Trim(found->key->value))) : std::nullopt;
}

std::vector<IniSection> IniDocument::Contents() const
{
    std::vector<IniSection> sections;
    for (std::size_t place = 0; place < m_text.size();)
    {
        const Line line = LineAt(place);
        if (line.kind == Line::Kind::Header)
        {
            sections.push_back({Text(line.name), {}});
        }
        else if (line.kind == Line::Kind::Entry && !sections.empty())
        {
            sections.back().entries.emplace_back(Text(line.name), Text(Trim(line.value)));
        }
        place = line.next;
    }
    return sections;
}

// Puts whole lines at the beginning of a line, or behind a last line that has no end yet.
void IniDocument::InsertLines(std::size_t place, std::string_view lines)
{
    const bool isEnded = place == 0 || kLineEnd.find(m_text[place - 1]) != std::string_view::npos;
    m_text.insert(place, Encode(m_encoding, std::string(isEnded ? "" : kLineEnd).append(lines)));
}

void IniDocument::Set(std::string_view section, std::string_view key, std::string_view value)
{
    const std::string entry = std::string(Trim(key)).append("=").append(value).append(kLineEnd);
    const std::optional<Section> found = Find(section, key);
    if (!found)
    {
        InsertLines(m_text.size(), std::string("[").append(Trim(section)).append("]\r\n").append(entry));
    }
    else if (found->key)
    {
        const std::string_view old = found->key->value;
        m_text.replace(static_cast<std::size_t>(old.data() - m_text.data()), old.size(),
                       Encode(m_encoding, value));
    }
    else
    {
        // Blank lines that set the next section apart stay between the two.
        InsertLines(found->lastEnd, entry);
    }
}

void IniDocument::Remove(std::string_view section, std::string_view key)
{
    if (const std::optional<Section> found = Find(section, key); found && found->key)
    {
        m_text.erase(found->keyBegin, found->key->next - found->keyBegin);
    }
}

void IniDocument::Remove(std::string_view section)
{
    if (const std::optional<Section> found = Find(section))
    {
        m_text.erase(found->begin, found->end - found->begin);
    }
}

} // namespace simulated
