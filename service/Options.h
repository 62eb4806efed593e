// service/Options.h
//
// What the command line asks of the service.
#pragma once

#include <cstdio>

namespace service
{

enum class Task
{
    Serve,
    StopOther, ///< ask the running service to end
    Help
};

struct Options
{
    Task task = Task::Serve;
    unsigned slowMilliseconds = 0; ///< wait this long before each answer
    bool refuse = false;           ///< answer every request with a failure notice, doing nothing
    bool silent = false;           ///< take requests and answer none
    bool once = false;             ///< end after the first request
    bool verbose = false;          ///< print every answer, not only failure notices
};

/// Parses the arguments behind the program's name; false for an unknown one, which is then reported on
/// standard error.
bool ParseOptions(int count, char** arguments, Options& options);

/// Prints the usage.
void PrintUsage(std::FILE* stream);

} // namespace service
