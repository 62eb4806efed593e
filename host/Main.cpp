// host/Main.cpp
//
// trxhost: loads the plug-in as the host service does and sends it requests from the command line, from a
// script or interactively.

#include "Console.h"
#include "TextTools.h"

#ifndef _WIN32
#include "base/Trace.h"
#include "control/Notebook.h"
#endif

#include <getopt.h>

#include <cstdio>
#include <fstream>
#include <iostream>

namespace
{

constexpr const char* kUsage =
    "usage: trxhost [options] [COMMAND [FIELD=VALUE ...]]\n"
    "       trxhost [options] --script FILE\n"
    "\n"
    "With neither a command nor a script, requests are read from the terminal.\n"
    "\n"
    "  -u, --user NAME      the account for which the request is made; the running one unless\n"
    "                       told otherwise\n"
    "  -s, --script FILE    runs a file of requests (- is standard input)\n"
    "  -w, --wait MS        stays for MS milliseconds after the last request and prints events\n"
    "  -j, --json           prints one JSON object for each answer and event\n"
    "  -t, --trace          shows the platform calls behind each request (native build)\n"
    "  -l, --list           lists all commands with payload and reply, and ends\n"
    "  -i, --identity       prints the plug-in's identity, and ends\n"
    "      --library FILE   the plug-in; beside this program unless told otherwise\n"
    "  -h, --help           this text\n"
    "\n"
    "The exit status of a single request is its result code: 0 done, 1 refused, 5 unknown, 6 failed.\n"
    "That of a script is the number of lines that made no request or waited in vain.\n"
    "2 means that the command line is wrong, 3 that the plug-in can't be started.\n";

constexpr int kWrongUsage = 2;
constexpr int kNoPlugIn = 3;

struct Options
{
    std::string user = host::RunningAccount();
    std::string script;
    std::string library = "pm_limited_support.dll";
    std::uint32_t wait = 0; // milliseconds
    host::Style style = host::Style::Text;
    bool trace = false;
    bool list = false;
    bool identity = false;
    bool help = false;
    bool wrong = false;
    std::vector<std::string> words;
};

constexpr int kLibraryOption = 1000;

constexpr option kLongOptions[] = {
    {"user", required_argument, nullptr, 'u'}, {"script", required_argument, nullptr, 's'},
    {"wait", required_argument, nullptr, 'w'}, {"json", no_argument, nullptr, 'j'},
    {"trace", no_argument, nullptr, 't'},      {"list", no_argument, nullptr, 'l'},
    {"identity", no_argument, nullptr, 'i'},   {"library", required_argument, nullptr, kLibraryOption},
    {"help", no_argument, nullptr, 'h'},       {nullptr, 0, nullptr, 0},
};

// Notes that the command line is wrong, and why.
void Reject(Options& options, const char* reason)
{
    std::fprintf(stderr, "trxhost: %s\n", reason);
    options.wrong = true;
}

void TakeWait(Options& options, const char* value)
{
    if (const auto milliseconds = host::ParseMilliseconds(value))
    {
        options.wait = *milliseconds;
        return;
    }
    Reject(options, "--wait takes a time in milliseconds");
}

void Take(Options& options, int letter, const char* value)
{
    switch (letter)
    {
    case 'u':
        options.user = value;
        break;
    case 's':
        options.script = value;
        break;
    case 'w':
        TakeWait(options, value);
        break;
    case 'j':
        options.style = host::Style::Json;
        break;
    case 't':
        options.trace = true;
        break;
    case 'l':
        options.list = true;
        break;
    case 'i':
        options.identity = true;
        break;
    case kLibraryOption:
        options.library = value;
        break;
    case 'h':
        options.help = true;
        break;
    default:
        options.wrong = true;
        break;
    }
}

Options ReadOptions(int argc, char** argv)
{
    Options options;
    int letter = 0;
    while ((letter = getopt_long(argc, argv, "u:s:w:jtlih", kLongOptions, nullptr)) != -1)
    {
        Take(options, letter, optarg);
    }
    options.words.assign(argv + optind, argv + argc);
    if (!options.words.empty() && !options.script.empty())
    {
        Reject(options, "a command and a script can't both be run");
    }
    return options;
}

// Prepares the platform before the plug-in is loaded. 0, or the exit status, with the reason printed.
int PreparePlatform(const Options& options)
{
#ifdef _WIN32
    if (options.trace)
    {
        std::fputs("trxhost: only the native build can show platform calls\n", stderr);
        return kWrongUsage;
    }
#else
    if (!simulated::Notebook::Exists())
    {
        std::fputs("trxhost: SIM_NOTEBOOK names no notebook; 'notebook create' makes one\n", stderr);
        return kNoPlugIn;
    }
    if (options.trace)
    {
        simulated::Trace::Print(true);
    }
#endif
    return 0;
}

// Runs one request or a whole script. Returns the exit status.
int RunAll(host::Console& console, const Options& options)
{
    if (!options.words.empty())
    {
        const int code = console.Run(options.words);
        return code < 0 ? kWrongUsage : code;
    }
    if (options.script.empty() || options.script == "-")
    {
        return console.RunLines(std::cin, options.script.empty() ? "trx> " : "");
    }
    std::ifstream script(options.script);
    if (!script)
    {
        std::fprintf(stderr, "trxhost: can't read %s\n", options.script.c_str());
        return kWrongUsage;
    }
    return console.RunLines(script, "");
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = ReadOptions(argc, argv);
    if (options.help || options.wrong)
    {
        std::fputs(kUsage, options.wrong ? stderr : stdout);
        return options.wrong ? kWrongUsage : 0;
    }
    if (options.list)
    {
        std::fputs(host::ShowCatalogue(options.style).c_str(), stdout);
        return 0;
    }
    if (const int code = PreparePlatform(options); code != 0)
    {
        return code;
    }
    host::Session session;
    host::Console console(session, options.user, options.style);
    const std::string fault =
        session.Start(options.library, [&console](const host::Event& event) { console.Receive(event); });
    if (!fault.empty())
    {
        std::fprintf(stderr, "trxhost: %s\n", fault.c_str());
        return kNoPlugIn;
    }
    if (options.identity)
    {
        std::printf("%s\n%s\n", session.ModuleId().c_str(), session.Description().c_str());
        return 0;
    }
    const int status = RunAll(console, options);
    if (options.wait > 0)
    {
        Sleep(options.wait);
    }
    session.Stop();
    return status;
}
