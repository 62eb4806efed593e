// host/Json.cpp
//
// Quoting and joining.

#include "Json.h"

#include <cstdio>

namespace host
{

std::string JsonText(std::string_view text)
{
    std::string quoted = "\"";
    for (const char letter : text)
    {
        const auto code = static_cast<unsigned char>(letter);
        if (letter == '"' || letter == '\\')
        {
            quoted += '\\';
            quoted += letter;
        }
        else if (code < 0x20)
        {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", code);
            quoted += escape;
        }
        else
        {
            quoted += letter;
        }
    }
    return quoted + '"';
}

JsonObject& JsonObject::Add(std::string_view key, std::string_view text)
{
    return AddRaw(key, JsonText(text));
}

JsonObject& JsonObject::Add(std::string_view key, long long number)
{
    return AddRaw(key, std::to_string(number));
}

JsonObject& JsonObject::AddRaw(std::string_view key, std::string_view json)
{
    m_members += m_members.empty() ? "" : ",";
    m_members += JsonText(key);
    m_members += ':';
    m_members += json;
    return *this;
}

std::string JsonObject::Text() const
{
    return '{' + m_members + '}';
}

} // namespace host
