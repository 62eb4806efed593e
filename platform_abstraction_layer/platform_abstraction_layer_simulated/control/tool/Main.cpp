// control/tool/Main.cpp
//
// notebook: makes a simulated notebook and changes it from the command line. Finds the verb in the tables and
// reports the outcome.

#include "control/Notebook.h"
#include "control/tool/Verbs.h"
#include "machine/Machine.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>

using namespace notebook_tool;
using simulated::Machine;
using simulated::Notebook;

namespace
{

constexpr int kRefused = 1;
constexpr int kMisused = 2;

constexpr option kOptions[] = {
    {"notebook", required_argument, nullptr, 'n'},
    {"version", required_argument, nullptr, 'v'},
    {"install", required_argument, nullptr, 'i'},
    {"code-page", required_argument, nullptr, 'c'},
    {"account", required_argument, nullptr, 'a'},
    {"help", no_argument, nullptr, 'h'},
    {nullptr, 0, nullptr, 0},
};

const Verb* FindVerb(const std::string& name)
{
    for (const std::span<const Verb> verbs : {SystemVerbs(), HardwareVerbs()})
    {
        for (const Verb& verb : verbs)
        {
            if (name == verb.name)
            {
                return &verb;
            }
        }
    }
    return nullptr;
}

void PrintHelp()
{
    std::puts(
        "notebook: makes a simulated notebook and changes it\n\n"
        "  notebook [--notebook DIR] [--account NAME] VERB ...\n\n"
        "The notebook is the folder DIR, or what SIM_NOTEBOOK names; HKEY_CURRENT_USER is that of NAME.\n");
    for (const std::span<const Verb> verbs : {SystemVerbs(), HardwareVerbs()})
    {
        for (const Verb& verb : verbs)
        {
            std::printf("  %s%s%s\n      %s\n", verb.name, *verb.arguments == 0 ? "" : " ", verb.arguments,
                        verb.help);
        }
    }
}

int Misuse(const char* problem, const std::string& what)
{
    std::fprintf(stderr, "notebook: %s%s ('notebook --help' tells more)\n", problem, what.c_str());
    return kMisused;
}

int Run(const Verb& verb, const Request& request)
{
    if (Machine::Folder() == "/dev/null")
    {
        return Misuse("no notebook chosen: ", "give --notebook DIR or set SIM_NOTEBOOK");
    }
    if (verb.needsNotebook && !Notebook::Exists())
    {
        std::fprintf(stderr, "notebook: there is no notebook in %s\n", Machine::Folder().c_str());
        return kRefused;
    }
    switch (verb.run(request))
    {
    case Outcome::Done:
        return EXIT_SUCCESS;
    case Outcome::Misused:
        return Misuse("usage: ", std::string(verb.name) + ' ' + verb.arguments);
    case Outcome::Refused:
        break;
    }
    std::fprintf(stderr, "notebook: %s didn't work\n", verb.name);
    return kRefused;
}

} // namespace

namespace notebook_tool
{

std::string Request::Argument(std::size_t index) const
{
    return index < arguments.size() ? arguments[index] : std::string();
}

std::string Request::Rest(std::size_t index) const
{
    std::string rest;
    for (; index < arguments.size(); ++index)
    {
        rest += (rest.empty() ? "" : " ") + arguments[index];
    }
    return rest;
}

bool ParseNumber(const std::string& text, unsigned& number)
{
    const bool isHexadecimal = text.starts_with("0x");
    const char* const end = text.data() + text.size();
    const auto [stop, error] =
        std::from_chars(text.data() + (isHexadecimal ? 2 : 0), end, number, isHexadecimal ? 16 : 10);
    return error == std::errc() && stop == end;
}

bool ParseSwitch(const std::string& text, const char* on, const char* off, bool& isOn)
{
    isOn = text == on;
    return isOn || text == off;
}

} // namespace notebook_tool

int main(int count, char** values)
{
    Request request;
    for (int found = 0; (found = getopt_long(count, values, "", kOptions, nullptr)) != -1;)
    {
        switch (found)
        {
        case 'n':
            Machine::Use(optarg);
            break;
        case 'v':
            request.version = optarg;
            break;
        case 'i':
            request.installation = optarg;
            break;
        case 'c':
            if (!ParseNumber(optarg, request.codePage))
            {
                return Misuse("no code page: ", optarg);
            }
            break;
        case 'a':
            Machine::RunAs(optarg);
            break;
        case 'h':
            PrintHelp();
            return EXIT_SUCCESS;
        default:
            return kMisused;
        }
    }
    if (optind == count || std::strcmp(values[optind], "help") == 0)
    {
        PrintHelp();
        return optind == count ? kMisused : EXIT_SUCCESS;
    }
    request.verb = values[optind];
    request.arguments.assign(values + optind + 1, values + count);
    const Verb* const verb = FindVerb(request.verb);
    return verb == nullptr ? Misuse("no such verb: ", request.verb) : Run(*verb, request);
}
