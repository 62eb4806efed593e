// host/Payload.cpp
//
// Encoding of payloads.

#include "Payload.h"

#include "TextTools.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace host
{

namespace
{

const Field* FindField(const RecordShape& shape, std::string_view name)
{
    const auto found =
        std::find_if(shape.fields.begin(), shape.fields.end(),
                     [name](const Field& field) { return EqualIgnoringCase(field.name, name); });
    return found == shape.fields.end() ? nullptr : &*found;
}

std::string FieldNames(const RecordShape& shape)
{
    std::string names;
    for (const Field& field : shape.fields)
    {
        names += names.empty() ? "" : ", ";
        names += field.name;
    }
    return names;
}

std::optional<std::int32_t> NumberOf(const Field& field, const std::string& value)
{
    for (const ValueName& name : field.names)
    {
        if (EqualIgnoringCase(name.name, value))
        {
            return name.value;
        }
    }
    return ParseNumber(value);
}

// Writes one value into the record. Returns what is wrong with it, or an empty text.
std::string Store(std::vector<std::byte>& bytes, const Field& field, const std::string& value)
{
    if (field.kind == FieldKind::Number)
    {
        const std::optional<std::int32_t> number = NumberOf(field, value);
        if (!number)
        {
            return std::string(field.name) + " wants a number, not '" + value + "'";
        }
        std::memcpy(bytes.data() + field.offset, &*number, sizeof *number);
        return {};
    }
    const std::string wire = ToWire(value);
    if (wire.size() >= field.size)
    {
        return std::string(field.name) + " takes " + std::to_string(field.size - 1) + " bytes, not " +
               std::to_string(wire.size());
    }
    std::memcpy(bytes.data() + field.offset, wire.c_str(), wire.size() + 1);
    return {};
}

} // namespace

Payload BuildPayload(const RecordShape& shape, std::span<const std::string> words)
{
    Payload payload;
    payload.bytes.resize(shape.size);
    for (const Field& field : shape.fields)
    {
        if (field.kind == FieldKind::Number)
        {
            std::memcpy(payload.bytes.data() + field.offset, &field.defaultValue, sizeof field.defaultValue);
        }
    }

    std::vector<const Field*> given;
    const auto isGiven = [&given](const Field& field)
    { return std::find(given.begin(), given.end(), &field) != given.end(); };
    for (const std::string& word : words)
    {
        const std::size_t equals = word.find('=');
        const Field* field = nullptr;
        std::string value = word;
        if (equals != std::string::npos)
        {
            field = FindField(shape, word.substr(0, equals));
            value = word.substr(equals + 1);
        }
        if (field == nullptr && equals == std::string::npos)
        {
            const auto next = std::find_if_not(shape.fields.begin(), shape.fields.end(), isGiven);
            field = next == shape.fields.end() ? nullptr : &*next;
        }
        if (field == nullptr)
        {
            payload.error = "no field for '" + word + "'; " +
                            (shape.fields.empty() ? "the command takes no payload"
                                                  : "the fields are: " + FieldNames(shape));
            return payload;
        }
        payload.error = Store(payload.bytes, *field, value);
        if (!payload.error.empty())
        {
            return payload;
        }
        given.push_back(field);
    }
    return payload;
}

} // namespace host
