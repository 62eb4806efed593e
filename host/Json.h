// host/Json.h
//
// Writes JSON objects on one line. Only what the host prints: texts, numbers, nested objects and lists.
#pragma once

#include <string>
#include <string_view>

namespace host
{

/// A quoted text; characters that aren't ASCII stay as they are, in UTF-8.
std::string JsonText(std::string_view text);

class JsonObject
{
public:
    JsonObject& Add(std::string_view key, std::string_view text);
    JsonObject& Add(std::string_view key, long long number);

    /// `json` is inserted as it is: a list or another object.
    JsonObject& AddRaw(std::string_view key, std::string_view json);

    std::string Text() const;

private:
    std::string m_members;
};

} // namespace host
