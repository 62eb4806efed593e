// control/tool/Verbs.h
//
// The verbs of the tool. Each area of the machine has a table of its own; Main.cpp searches
// them.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace notebook_tool
{

/// The verb, the command line behind it, and the options that stood anywhere on it.
struct Request
{
    std::string verb;
    std::vector<std::string> arguments;
    std::string version = "5.1";
    std::string installation;
    unsigned codePage = 1252;

    /// Argument number `index`, or an empty text.
    std::string Argument(std::size_t index) const;

    /// The arguments from number `index` on, with blanks between them.
    std::string Rest(std::size_t index) const;
};

enum class Outcome
{
    Done,
    Refused, ///< the machine doesn't have it, or the host doesn't let it be changed
    Misused  ///< the arguments are invalid
};

struct Verb
{
    const char* name;
    const char* arguments;
    const char* help;
    Outcome (*run)(const Request& request);
    bool needsNotebook = true;
};

/// Creating and showing, version, code page, modules, accounts, registry, applied scheme.
std::span<const Verb> SystemVerbs();

std::span<const Verb> HardwareVerbs();

/// Prints what the machine is and has.
Outcome Show(const Request& request);

inline Outcome DoneIf(bool done)
{
    return done ? Outcome::Done : Outcome::Refused;
}

/// A whole text as a number, decimal or with "0x".
bool ParseNumber(const std::string& text, unsigned& number);

/// One of two words, such as "in" and "out".
bool ParseSwitch(const std::string& text, const char* on, const char* off, bool& isOn);

} // namespace notebook_tool
