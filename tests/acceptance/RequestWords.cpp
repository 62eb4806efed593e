// tests/acceptance/RequestWords.cpp
//
// Converts words to bytes and back.

#include "acceptance/RequestWords.h"

#include "CommandCatalogue.h"
#include "Payload.h"
#include "TextTools.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace
{

std::string Hex(const std::vector<std::byte>& bytes)
{
    std::string hex;
    for (const std::byte byte : bytes)
    {
        constexpr char kDigits[] = "0123456789abcdef";
        hex += kDigits[static_cast<unsigned>(byte) >> 4];
        hex += kDigits[static_cast<unsigned>(byte) & 15];
    }
    return hex;
}

std::string InWords(const host::Field& field, const std::vector<std::byte>& bytes)
{
    const std::string name = std::string(field.name) + '=';
    if (field.kind == host::FieldKind::Number)
    {
        std::int32_t number = 0;
        std::memcpy(&number, bytes.data() + field.offset, sizeof number);
        return name + std::to_string(number);
    }
    const auto* const begin = reinterpret_cast<const char*>(bytes.data()) + field.offset;
    return name + '"' + std::string(begin, std::find(begin, begin + field.size, '\0')) + '"';
}

} // namespace

std::vector<std::byte> PayloadOf(const std::string& command, const std::string& fields)
{
    const host::CommandEntry* const entry = host::FindCommand(command);
    const auto words = host::SplitWords(fields);
    EXPECT_TRUE(entry != nullptr && words.has_value()) << command << ' ' << fields;
    const host::Payload payload = host::BuildPayload(entry->payload, words.value());
    EXPECT_EQ("", payload.error) << command << ' ' << fields;
    return payload.bytes;
}

std::string ReplyInWords(const std::string& command, const std::vector<std::byte>& reply)
{
    const host::RecordShape& shape = host::FindCommand(command)->reply;
    if (&shape == &host::kTextReply)
    {
        const std::string text(reinterpret_cast<const char*>(reply.data()), reply.size());
        EXPECT_EQ(text.size(), text.find('\0') + 1) << "the only terminator is the end";
        return '"' + text.substr(0, text.find('\0')) + '"';
    }
    if (reply.size() != shape.size || shape.fields.empty())
    {
        return Hex(reply);
    }
    std::string words;
    for (const host::Field& field : shape.fields)
    {
        words += (words.empty() ? "" : " ") + InWords(field, reply);
    }
    return words;
}

std::string Ask(Host& host, const std::string& command, const std::string& fields)
{
    host.TakeEvents();
    return InWords(host, command, host.Send(command, PayloadOf(command, fields)));
}

std::string InWords(Host& host, const std::string& command, const Answer& answer)
{
    std::string words = std::to_string(answer.code);
    if (answer.reply.has_value())
    {
        words += ' ' + (answer.reply->empty() ? "(empty)" : ReplyInWords(command, *answer.reply));
    }
    for (const Event& event : host.TakeEvents())
    {
        words += ", " + event.name + ' ' + std::to_string(event.Number());
    }
    return words;
}
