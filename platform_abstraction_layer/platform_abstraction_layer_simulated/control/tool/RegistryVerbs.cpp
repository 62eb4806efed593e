// control/tool/RegistryVerbs.cpp
//
// The verb for the registry. Values are shown and given in the form of a registry export
// (advapi32/ValueText.h); what has no such form is a text.

#include "control/RegistryEditor.h"
#include "control/tool/Verbs.h"

#include <winnt.h>

#include <cstdio>

using namespace simulated;

namespace notebook_tool
{

namespace
{

Outcome List(const Request& request)
{
    const std::string key = request.Argument(1);
    if (!RegistryEditor::HasKey(key))
    {
        return Outcome::Refused;
    }
    for (const std::string& name : RegistryEditor::Keys(key))
    {
        std::printf("%s\\\n", name.c_str());
    }
    for (const std::string& name : RegistryEditor::Values(key))
    {
        const std::optional<registry::Value> value = RegistryEditor::Read(key, name);
        std::printf("%s = %s\n", name.c_str(),
                    value ? registry::FormatValue(*value).c_str() : "(unreadable)");
    }
    return Outcome::Done;
}

Outcome Get(const Request& request)
{
    const std::optional<registry::Value> value =
        RegistryEditor::Read(request.Argument(1), request.Argument(2));
    if (value)
    {
        std::puts(registry::FormatValue(*value).c_str());
    }
    return DoneIf(value.has_value());
}

Outcome Set(const Request& request)
{
    const std::string text = request.Rest(3);
    const registry::Value value = registry::ParseValue(text).value_or(registry::TextValue(text, REG_SZ));
    return DoneIf(RegistryEditor::Write(request.Argument(1), request.Argument(2), value));
}

Outcome Delete(const Request& request)
{
    return DoneIf(request.arguments.size() == 2
                      ? RegistryEditor::RemoveKey(request.Argument(1))
                      : RegistryEditor::RemoveValue(request.Argument(1), request.Argument(2)));
}

struct Action
{
    const char* name;
    std::size_t fewestArguments;
    Outcome (*run)(const Request& request);
};
constexpr Action kActions[] = {
    {"list", 2, &List}, {"get", 3, &Get}, {"set", 4, &Set}, {"delete", 2, &Delete}};

Outcome Change(const Request& request)
{
    for (const Action& action : kActions)
    {
        if (request.Argument(0) == action.name && request.arguments.size() >= action.fewestArguments)
        {
            return action.run(request);
        }
    }
    return Outcome::Misused;
}

constexpr Verb kVerbs[] = {
    {"registry", "list KEY | get KEY NAME | set KEY NAME VALUE | delete KEY [NAME]",
     "KEY is a path such as HKLM\\Software\\Kelvo, VALUE such as dword:2a, hex:01,02 or a text", &Change},
};

} // namespace

std::span<const Verb> RegistryVerbs()
{
    return kVerbs;
}

} // namespace notebook_tool
