// service/Options.cpp
//
// The options as a table.

#include "Options.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace service
{

namespace
{

struct Option
{
    const char* name;
    const char* argument; // "MS" for a number, else empty
    void (*apply)(Options& options, unsigned number);
    const char* help;
};

constexpr Option kOptions[] = {
    {"--slow", "MS", [](Options& options, unsigned number) { options.slowMilliseconds = number; },
     "wait MS milliseconds before each answer"},
    {"--refuse", "", [](Options& options, unsigned) { options.refuse = true; },
     "answer every request with a failure notice"},
    {"--silent", "", [](Options& options, unsigned) { options.silent = true; },
     "take requests and answer none"},
    {"--once", "", [](Options& options, unsigned) { options.once = true; }, "end after the first request"},
    {"--verbose", "", [](Options& options, unsigned) { options.verbose = true; },
     "print every answer, not only failure notices"},
    {"--stop", "", [](Options& options, unsigned) { options.task = Task::StopOther; },
     "end the service that is running"},
    {"--help", "", [](Options& options, unsigned) { options.task = Task::Help; }, "this text"},
};

const Option* Find(const char* name)
{
    for (const Option& option : kOptions)
    {
        if (std::strcmp(option.name, name) == 0)
        {
            return &option;
        }
    }
    return nullptr;
}

// True when `text` is a decimal number that fits and nothing else.
bool ParseNumber(const char* text, unsigned& number)
{
    char* end = nullptr;
    const unsigned long value = std::strtoul(text, &end, 10);
    if (*text < '0' || *text > '9' || *end != 0 || value > INT_MAX)
    {
        return false;
    }
    number = static_cast<unsigned>(value);
    return true;
}

} // namespace

bool ParseOptions(int count, char** arguments, Options& options)
{
    for (int i = 1; i < count; ++i)
    {
        const Option* option = Find(arguments[i]);
        if (option == nullptr)
        {
            std::fprintf(stderr, "orvlservice: unknown option %s\n", arguments[i]);
            return false;
        }
        unsigned number = 0;
        if (*option->argument != 0 && (++i == count || !ParseNumber(arguments[i], number)))
        {
            std::fprintf(stderr, "orvlservice: %s needs a number\n", option->name);
            return false;
        }
        option->apply(options, number);
    }
    return true;
}

void PrintUsage(std::FILE* stream)
{
    std::fputs("usage: orvlservice [options]\n"
               "\n"
               "Serves the boards over which the plug-in reports applied schemes and asks for changes of\n"
               "devices. It ends on Ctrl-C, when the pipe that feeds it closes, and on --stop.\n"
               "\n",
               stream);
    for (const Option& option : kOptions)
    {
        std::fprintf(stream, "  %-9s %-2s  %s\n", option.name, option.argument, option.help);
    }
}

} // namespace service
