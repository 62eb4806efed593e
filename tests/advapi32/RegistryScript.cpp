// tests/advapi32/RegistryScript.cpp
//
// The words and what they do.

#include "RegistryScript.h"

#include "support/WideText.h"

#include <array>
#include <iterator>
#include <map>
#include <sstream>
#include <vector>

namespace registry_script
{

namespace
{

constexpr DWORD kRoom = 400;

/// What the steps of one script share.
struct State
{
    HKEY key;
    HKEY held = nullptr;
    std::vector<std::string> words = {}; ///< of the present step
    HKEY target = nullptr;               ///< `key` or `held`
    std::array<std::vector<wchar_t>, 3> texts = {};

    std::string Word(std::size_t index) const
    {
        return index < words.size() ? words[index] : std::string();
    }
    /// Null for "null"; valid until the next call for the same index.
    const wchar_t* Text(std::size_t index)
    {
        texts.at(index) = Wide(Word(index) == "''" ? std::string() : Word(index));
        return Word(index) == "null" ? nullptr : texts.at(index).data();
    }
    DWORD Number(std::size_t index) const
    {
        return static_cast<DWORD>(std::stoul("0" + Word(index)));
    }
};

const std::map<std::string, REGSAM> kAccesses = {
    {"", KEY_READ},
    {"read", KEY_READ},
    {"write", KEY_WRITE},
    {"all", KEY_ALL_ACCESS},
    {"query", KEY_QUERY_VALUE},
    {"set", KEY_SET_VALUE},
    {"enumerate", KEY_ENUMERATE_SUB_KEYS},
    {"create", KEY_CREATE_SUB_KEY},
};

/// The output of a step, or why it failed.
std::string Outcome(LONG status, const std::string& given)
{
    return status == ERROR_SUCCESS ? given : std::to_string(status);
}

std::string Make(State& state)
{
    HKEY made = nullptr;
    DWORD disposition = 0;
    const LONG status = RegCreateKeyExW(state.target, state.Text(1), 0, nullptr, 0,
                                        kAccesses.at(state.Word(2)), nullptr, &made, &disposition);
    RegCloseKey(made);
    return Outcome(status, disposition == REG_CREATED_NEW_KEY ? "new" : "old");
}

std::string Open(State& state)
{
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExW(state.target, state.Text(1), 0, kAccesses.at(state.Word(2)), &opened);
    RegCloseKey(opened);
    return std::to_string(status) + (opened == state.target ? "same" : "");
}

std::string Set(State& state)
{
    const auto size = static_cast<DWORD>((state.Word(2).size() + 1) * sizeof(wchar_t));
    return std::to_string(RegSetValueExW(state.target, state.Text(1), 0, REG_SZ,
                                         reinterpret_cast<const BYTE*>(state.Text(2)), size));
}

std::string Get(State& state)
{
    wchar_t text[kRoom] = {};
    DWORD size = sizeof text;
    const LONG status =
        RegQueryValueExW(state.target, state.Text(1), nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    return Outcome(status, Utf8(text));
}

/// "key INDEX ROOM": the name and its length, and what the simpler function gives.
std::string KeyAt(State& state)
{
    wchar_t name[kRoom] = {};
    DWORD length = state.Number(2);
    const LONG status =
        RegEnumKeyExW(state.target, state.Number(1), name, &length, nullptr, nullptr, nullptr, nullptr);
    const std::string shown = Outcome(status, Utf8(name) + ':' + std::to_string(length));
    const LONG simply = RegEnumKeyW(state.target, state.Number(1), name, state.Number(2));
    return shown + ' ' + Outcome(simply, Utf8(name));
}

std::string Keys(State& state)
{
    std::string names;
    for (DWORD index = 0;; ++index)
    {
        wchar_t name[kRoom] = {};
        const LONG status = RegEnumKeyW(state.target, index, name, kRoom);
        if (status != ERROR_SUCCESS)
        {
            return names + std::to_string(status);
        }
        names += Utf8(name) + ' ';
    }
}

using Word = std::string (*)(State& state);

// A closed handle stays in `held`, for tests of closed handles.
const std::map<std::string, Word> kWords = {
    {"make", &Make},
    {"open", &Open},
    {"hold",
     [](State& state)
     {
         return std::to_string(
             RegOpenKeyExW(state.key, state.Text(1), 0, kAccesses.at(state.Word(2)), &state.held));
     }},
    {"close", [](State& state) { return std::to_string(RegCloseKey(state.held)); }},
    {"set", &Set},
    {"get", &Get},
    {"drop", [](State& state) { return std::to_string(RegDeleteValueW(state.target, state.Text(1))); }},
    {"delete", [](State& state) { return std::to_string(RegDeleteKeyW(state.target, state.Text(1))); }},
    {"key", &KeyAt},
    {"keys", &Keys},
};

std::string RunStep(State& state)
{
    std::string name = state.words.front();
    name.erase(0, name.find_first_not_of("-@"));
    const auto word = kWords.find(name);
    state.target = state.words.front().find('@') == std::string::npos ? state.key : state.held;
    return word == kWords.end() ? "unknown word " + name : word->second(state);
}

} // namespace

std::string Play(HKEY key, const std::string& script)
{
    State state{key};
    std::string outcome;
    std::istringstream steps(script);
    for (std::string step; std::getline(steps, step, ';');)
    {
        std::istringstream words(step);
        state.words.assign(std::istream_iterator<std::string>(words), {});
        const std::string given = RunStep(state);
        if (!state.words.front().starts_with('-'))
        {
            outcome += (outcome.empty() ? "" : " ") + given;
        }
    }
    RegCloseKey(state.held);
    return outcome;
}

void RemoveTree(HKEY parent, const wchar_t* name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, name, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
    {
        return;
    }
    wchar_t child[kRoom];
    while (RegEnumKeyW(key, 0, child, kRoom) == ERROR_SUCCESS)
    {
        RemoveTree(key, child);
    }
    RegCloseKey(key);
    RegDeleteKeyW(parent, name);
}

} // namespace registry_script
