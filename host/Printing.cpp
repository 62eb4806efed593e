// host/Printing.cpp
//
// Decoding of replies and events.

#include "Printing.h"

#include "Json.h"
#include "TextTools.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace host
{

namespace
{

std::int32_t NumberAt(std::span<const std::byte> bytes, std::size_t offset)
{
    std::int32_t number = 0;
    std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

std::string TextAt(std::span<const std::byte> bytes, std::size_t offset, std::size_t size)
{
    const auto* begin = reinterpret_cast<const char*>(bytes.data()) + offset;
    return FromWire(std::string_view(begin, std::find(begin, begin + size, '\0')));
}

// A number with its name or its unit: "1 (on)", "600 s", "42".
std::string ShowNumber(const Field& field, std::int32_t number)
{
    const auto name = std::find_if(field.names.begin(), field.names.end(),
                                   [number](const ValueName& row) { return row.value == number; });
    std::string shown = std::to_string(number);
    if (name != field.names.end())
    {
        return shown + " (" + name->name + ")";
    }
    return *field.unit == '\0' ? shown : shown + ' ' + field.unit;
}

std::string ShowField(const Field& field, std::span<const std::byte> bytes)
{
    if (field.kind == FieldKind::Number)
    {
        return ShowNumber(field, NumberAt(bytes, field.offset));
    }
    return '"' + TextAt(bytes, field.offset, field.size) + '"';
}

std::string Padded(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text;
}

const Field* FieldNamed(const RecordShape& shape, const std::string& name)
{
    const auto found = std::find_if(shape.fields.begin(), shape.fields.end(),
                                    [&name](const Field& field) { return name == field.name; });
    return found == shape.fields.end() ? nullptr : &*found;
}

constexpr std::size_t kNameWidth = 20;
constexpr std::size_t kColumnWidth = 18;

// A whole scheme reads best as a table: a row for each variable, a column for each power source.
std::string ShowLines(const RecordShape& shape, std::span<const std::byte> bytes)
{
    std::string lines;
    bool headed = false;
    for (const Field& field : shape.fields)
    {
        const std::string name = field.name;
        if (name.starts_with("dc."))
        {
            continue; // shown beside its AC value
        }
        if (name.starts_with("ac."))
        {
            if (!headed)
            {
                lines += "  " + Padded("", kNameWidth) + Padded("mains", kColumnWidth) + "battery\n";
                headed = true;
            }
            const Field* battery = FieldNamed(shape, "dc." + name.substr(3));
            lines += "  " + Padded(name.substr(3), kNameWidth) +
                     Padded(ShowField(field, bytes), kColumnWidth) + ShowField(*battery, bytes) + '\n';
            continue;
        }
        lines += "  " + Padded(name, kNameWidth) + ShowField(field, bytes) + '\n';
    }
    return lines;
}

std::string FieldsAsJson(const RecordShape& shape, std::span<const std::byte> bytes)
{
    JsonObject object;
    for (const Field& field : shape.fields)
    {
        if (field.kind == FieldKind::Number)
        {
            object.Add(field.name, static_cast<long long>(NumberAt(bytes, field.offset)));
        }
        else
        {
            object.Add(field.name, TextAt(bytes, field.offset, field.size));
        }
    }
    return object.Text();
}

std::string AsHex(std::span<const std::byte> bytes)
{
    std::string hex;
    for (const std::byte byte : bytes)
    {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(byte));
        hex += digits;
    }
    return hex;
}

// How to decode a reply: null when it can only be shown as bytes.
const RecordShape* ShapeOf(const CommandEntry* entry, const Answer& answer)
{
    if (entry == nullptr || &entry->reply == &kTextReply)
    {
        return nullptr;
    }
    return !answer.reply.empty() && answer.reply.size() == entry->reply.size ? &entry->reply : nullptr;
}

std::string ReplyAsText(const CommandEntry* entry, const Answer& answer)
{
    if (const RecordShape* shape = ShapeOf(entry, answer); shape != nullptr)
    {
        return ShowLines(*shape, answer.reply);
    }
    if (answer.reply.empty())
    {
        return {};
    }
    if (entry != nullptr && &entry->reply == &kTextReply)
    {
        return "  \"" + TextAt(answer.reply, 0, answer.reply.size()) + "\"\n";
    }
    return "  bytes " + AsHex(answer.reply) + '\n';
}

std::string AnswerAsJson(const std::string& command, const CommandEntry* entry, const Answer& answer)
{
    JsonObject object;
    object.Add("command", command).Add("result", static_cast<long long>(answer.code));
    if (const RecordShape* shape = ShapeOf(entry, answer); shape != nullptr)
    {
        object.AddRaw("reply", FieldsAsJson(*shape, answer.reply));
    }
    else if (entry != nullptr && &entry->reply == &kTextReply && !answer.reply.empty())
    {
        object.Add("reply", TextAt(answer.reply, 0, answer.reply.size()));
    }
    else if (!answer.reply.empty())
    {
        object.Add("replyBytes", AsHex(answer.reply));
    }
    return object.Text() + '\n';
}

std::string ShapeAsWords(const RecordShape& shape)
{
    std::string words;
    for (const Field& field : shape.fields)
    {
        words += words.empty() ? "" : " ";
        words += field.name;
    }
    return words.empty() ? shape.name : words;
}

} // namespace

const char* ResultWord(LONG code) noexcept
{
    switch (code)
    {
    case 0:
        return "OK";
    case 1:
        return "REFUSED";
    case 5:
        return "UNKNOWN COMMAND";
    default:
        return "FAILED";
    }
}

std::string Show(const std::string& command, const CommandEntry* entry, const Answer& answer, Style style)
{
    if (style == Style::Json)
    {
        return AnswerAsJson(command, entry, answer);
    }
    return command + ": " + ResultWord(answer.code) + " (" + std::to_string(answer.code) + ")\n" +
           ReplyAsText(entry, answer);
}

std::string Show(const Event& event, Style style)
{
    const bool isNumber = event.data.size() == sizeof(std::int32_t);
    if (style == Style::Json)
    {
        JsonObject object;
        object.Add("event", event.name);
        if (isNumber)
        {
            object.Add("value", static_cast<long long>(NumberAt(event.data, 0)));
        }
        return object.Text() + '\n';
    }
    return "event " + event.name + ' ' +
           (isNumber ? std::to_string(NumberAt(event.data, 0)) : AsHex(event.data)) + '\n';
}

std::string ShowCatalogue(Style style)
{
    std::string lines;
    for (const CommandEntry& entry : Commands())
    {
        if (style == Style::Json)
        {
            JsonObject object;
            object.Add("command", entry.info.name)
                .Add("payload", entry.payload.name)
                .Add("payloadSize", static_cast<long long>(entry.payload.size))
                .Add("reply", entry.reply.name)
                .Add("replySize", static_cast<long long>(entry.reply.size))
                .Add("summary", entry.summary);
            lines += object.Text() + '\n';
            continue;
        }
        lines += std::string(entry.info.name) + (entry.info.needsUser ? "  [--user]" : "") + "\n    " +
                 entry.summary + "\n    payload: " + ShapeAsWords(entry.payload) + " (" +
                 std::to_string(entry.payload.size) + " bytes)\n    reply:   " + ShapeAsWords(entry.reply);
        lines += &entry.reply == &kTextReply ? "\n" : " (" + std::to_string(entry.reply.size) + " bytes)\n";
    }
    return lines;
}

} // namespace host
