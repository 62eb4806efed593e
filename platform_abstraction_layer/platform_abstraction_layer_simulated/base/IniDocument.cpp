// base/IniDocument.cpp
//
// A walk over lines, and edits of the bytes at the places that it finds.

#include "base/IniDocument.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace simulated
{

namespace
{

constexpr std::string_view kUtf16Mark = "\xFF\xFE";
constexpr std::string_view kLineEnd = "\r\n";

constexpr bool IsBlank(unsigned unit)
{
    return unit == ' ' || unit == '\t' || unit == '\v' || unit == '\f';
}

constexpr bool IsLineEnd(unsigned unit)
{
    return unit == '\r' || unit == '\n';
}

constexpr unsigned FoldPlain(unsigned unit)
{
    return unit >= 'a' && unit <= 'z' ? unit - 0x20 : unit;
}

std::string_view TrimName(std::string_view name)
{
    while (!name.empty() && IsBlank(static_cast<unsigned char>(name.front())))
    {
        name.remove_prefix(1);
    }
    while (!name.empty() && IsBlank(static_cast<unsigned char>(name.back())))
    {
        name.remove_suffix(1);
    }
    return name;
}

} // namespace

IniDocument::IniDocument(std::string bytes, Encoding narrow)
    : m_bytes(std::move(bytes)), m_encoding(m_bytes.starts_with(kUtf16Mark) ? Encoding::Utf16 : narrow),
      m_width(m_encoding == Encoding::Utf16 ? 2 : 1)
{
}

std::size_t IniDocument::Start() const noexcept
{
    return m_encoding == Encoding::Utf16 ? kUtf16Mark.size() : 0;
}

// A lone byte at the end of UTF-16 text is no text, and stays the last.
std::size_t IniDocument::End() const noexcept
{
    return m_bytes.size() - m_bytes.size() % m_width;
}

unsigned IniDocument::UnitAt(std::size_t place) const noexcept
{
    const unsigned low = static_cast<unsigned char>(m_bytes[place]);
    return m_width == 1 ? low
                        : low | (static_cast<unsigned>(static_cast<unsigned char>(m_bytes[place + 1])) << 8);
}

IniDocument::Line IniDocument::LineAt(std::size_t begin) const noexcept
{
    const std::size_t end = End();
    std::size_t place = begin;
    if (m_width == 1)
    {
        const std::string_view rest = std::string_view(m_bytes).substr(begin);
        const std::string_view line = rest.substr(0, rest.find('\n'));
        place += std::min(line.find('\r'), line.size());
    }
    while (place < end && !IsLineEnd(UnitAt(place)))
    {
        place += m_width;
    }
    Line line = {{begin, place}, place};
    if (place < end)
    {
        line.next += m_width;
        if (UnitAt(place) == '\r' && line.next < end && UnitAt(line.next) == '\n')
        {
            line.next += m_width;
        }
    }
    return line;
}

IniDocument::Span IniDocument::Trim(Span span) const noexcept
{
    while (span.begin < span.end && IsBlank(UnitAt(span.begin)))
    {
        span.begin += m_width;
    }
    while (span.begin < span.end && IsBlank(UnitAt(span.end - m_width)))
    {
        span.end -= m_width;
    }
    return span;
}

IniDocument::Parsed IniDocument::Parse(Span line) const noexcept
{
    const Span text = Trim(line);
    if (text.begin == text.end)
    {
        return {Kind::Blank, {}, {}};
    }
    const unsigned first = UnitAt(text.begin);
    if (first == ';')
    {
        return {Kind::Other, {}, {}};
    }
    if (first == '[')
    {
        // What stands behind the last bracket is ignored; without a bracket the line is none of a header.
        for (std::size_t place = text.end; place > text.begin + m_width; place -= m_width)
        {
            if (UnitAt(place - m_width) == ']')
            {
                return {Kind::Header, Trim({text.begin + m_width, place - m_width}), {}};
            }
        }
    }
    const std::size_t equals = Find('=', text);
    if (equals == text.end)
    {
        return {Kind::Other, {}, {}};
    }
    return {Kind::Entry, Trim({text.begin, equals}), {equals + m_width, line.end}};
}

// Where a plain character stands in `span`, or the span's end.
std::size_t IniDocument::Find(char character, Span span) const noexcept
{
    if (m_width == 1)
    {
        const std::string_view text = std::string_view(m_bytes).substr(span.begin, span.end - span.begin);
        return span.begin + std::min(text.find(character), text.size());
    }
    std::size_t place = span.begin;
    while (place < span.end && UnitAt(place) != static_cast<unsigned char>(character))
    {
        place += m_width;
    }
    return place;
}

std::string IniDocument::Text(Span span) const
{
    std::string text =
        Decode(m_encoding, std::string_view(m_bytes).substr(span.begin, span.end - span.begin));
    text.resize(std::min(text.size(), text.find('\0')));
    return text;
}

// Plain letters are compared in place; only a name with others is decoded.
bool IniDocument::IsName(Span span, std::string_view name) const
{
    std::size_t place = span.begin;
    for (const char wanted : name)
    {
        const unsigned unit = place < span.end ? UnitAt(place) : 0;
        if (unit == 0 || unit >= 0x80 || static_cast<unsigned char>(wanted) >= 0x80)
        {
            return EqualIgnoringCase(Text(span), name);
        }
        if (FoldPlain(unit) != FoldPlain(static_cast<unsigned char>(wanted)))
        {
            return false;
        }
        place += m_width;
    }
    return place == span.end || UnitAt(place) == 0;
}

// Visits the lines from `begin` to `end` until the visitor answers false.
template <class Visit>
void IniDocument::Walk(std::size_t begin, std::size_t end, Visit visit) const
{
    while (begin < end)
    {
        const Line line = LineAt(begin);
        if (!visit(line, Parse(line.text)))
        {
            return;
        }
        begin = line.next;
    }
}

// The first header whose line begins at `begin` or behind it. Only lines with a bracket are looked at.
std::optional<IniDocument::Header> IniDocument::NextHeader(std::size_t begin) const noexcept
{
    const std::size_t end = End();
    for (std::size_t place = Find('[', {begin, end}); place < end; place = Find('[', {place + m_width, end}))
    {
        std::size_t lineBegin = place;
        while (lineBegin > begin && IsBlank(UnitAt(lineBegin - m_width)))
        {
            lineBegin -= m_width;
        }
        if (lineBegin > begin && !IsLineEnd(UnitAt(lineBegin - m_width)))
        {
            continue;
        }
        const Line line = LineAt(lineBegin);
        if (const Parsed parsed = Parse(line.text); parsed.kind == Kind::Header)
        {
            return Header{line, parsed.name};
        }
    }
    return std::nullopt;
}

std::optional<IniDocument::Section> IniDocument::FindSection(std::string_view name) const
{
    const std::string_view wanted = TrimName(name);
    std::optional<Header> header = NextHeader(Start());
    while (header && !IsName(header->name, wanted))
    {
        header = NextHeader(header->line.next);
    }
    if (!header)
    {
        return std::nullopt;
    }
    const std::optional<Header> following = NextHeader(header->line.next);
    return Section{header->line.text.begin, header->line.next,
                   following ? following->line.text.begin : End()};
}

std::optional<IniDocument::Line> IniDocument::FindKey(const Section& section, std::string_view key) const
{
    const std::string_view wanted = TrimName(key);
    std::optional<Line> found;
    Walk(section.body, section.end,
         [&](const Line& line, const Parsed& parsed)
         {
             if (parsed.kind == Kind::Entry && IsName(parsed.name, wanted))
             {
                 found = line;
             }
             return !found;
         });
    return found;
}

std::optional<std::string> IniDocument::Value(std::string_view section, std::string_view key) const
{
    const std::optional<Section> place = FindSection(section);
    const std::optional<Line> line = place ? FindKey(*place, key) : std::nullopt;
    if (!line)
    {
        return std::nullopt;
    }
    return Text(Trim(Parse(line->text).value));
}

std::vector<IniSection> IniDocument::Contents() const
{
    std::vector<IniSection> sections;
    Walk(Start(), End(),
         [&](const Line&, const Parsed& parsed)
         {
             if (parsed.kind == Kind::Header)
             {
                 sections.push_back({Text(parsed.name), {}});
             }
             else if (parsed.kind == Kind::Entry && !sections.empty())
             {
                 sections.back().entries.emplace_back(Text(parsed.name), Text(Trim(parsed.value)));
             }
             return true;
         });
    return sections;
}

// Puts whole lines at the beginning of a line, or behind a last line that has no end yet.
void IniDocument::InsertLines(std::size_t place, std::string_view lines)
{
    std::string text;
    if (place > Start() && !IsLineEnd(UnitAt(place - m_width)))
    {
        text = kLineEnd;
    }
    text += lines;
    m_bytes.insert(place, Encode(m_encoding, text));
}

void IniDocument::Set(std::string_view section, std::string_view key, std::string_view value)
{
    std::string entry(TrimName(key));
    entry += '=';
    entry += value;
    entry += kLineEnd;

    const std::optional<Section> place = FindSection(section);
    if (!place)
    {
        std::string lines = "[";
        lines += TrimName(section);
        lines += ']';
        lines += kLineEnd;
        InsertLines(End(), lines + entry);
        return;
    }
    if (const std::optional<Line> line = FindKey(*place, key))
    {
        const Span old = Parse(line->text).value;
        m_bytes.replace(old.begin, old.end - old.begin, Encode(m_encoding, value));
        return;
    }
    // Blank lines that set the next section apart stay between the two.
    std::size_t behind = place->body;
    Walk(place->body, place->end,
         [&](const Line& line, const Parsed& parsed)
         {
             behind = parsed.kind == Kind::Blank ? behind : line.next;
             return true;
         });
    InsertLines(behind, entry);
}

bool IniDocument::Remove(std::string_view section, std::string_view key)
{
    const std::optional<Section> place = FindSection(section);
    const std::optional<Line> line = place ? FindKey(*place, key) : std::nullopt;
    if (!line)
    {
        return false;
    }
    m_bytes.erase(line->text.begin, line->next - line->text.begin);
    return true;
}

bool IniDocument::Remove(std::string_view section)
{
    const std::optional<Section> place = FindSection(section);
    if (!place)
    {
        return false;
    }
    m_bytes.erase(place->begin, place->end - place->begin);
    return true;
}

} // namespace simulated
