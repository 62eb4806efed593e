// service/Main.cpp
//
// orvlservice: the process on the other side of the boards. It is told of every applied scheme, passes the
// number on to the plug-in that listens, and changes devices on request.

#include "Boards.h"
#include "Options.h"
#include "Requests.h"
#include "StopSignal.h"

#include "foundation/Results.h"

#include <cstdio>

namespace
{

using namespace service;

// Serves the request that rang. A board that can't be reached now may be free at the next one.
void ServeOne(Boards& boards, const Options& options)
{
    Request request;
    if (!boards.Take(request))
    {
        std::printf("the parameter board can't be read\n");
        return;
    }
    Print(request);
    if (options.silent)
    {
        std::printf("  left without an answer\n");
        return;
    }
    const Answer answer = options.refuse ? FailureNotice(kGeneralFailure) : CarryOut(request);
    if (options.slowMilliseconds != 0)
    {
        Sleep(options.slowMilliseconds);
    }
    if (!boards.Give(answer))
    {
        std::printf("the result board can't be written\n");
        return;
    }
    if (options.verbose || answer.code != service_boards::kDone)
    {
        std::printf("  answered code %lu, value 0x%lx\n", static_cast<unsigned long>(answer.code),
                    static_cast<unsigned long>(answer.value));
    }
}

// Runs until something ends the service. Returns the process's exit code.
int Serve(const Options& options)
{
    StopSignal stop;
    if (!stop.Listen())
    {
        std::fprintf(stderr, "orvlservice: a service is running already\n");
        return 1;
    }
    Boards boards;
    if (!boards.Create())
    {
        std::fprintf(stderr, "orvlservice: the boards can't be created, error %lu\n",
                     static_cast<unsigned long>(GetLastError()));
        return 1;
    }
    std::printf("serving\n");

    const HANDLE signals[] = {stop.Event(), boards.Doorbell()};
    while (!stop.IsDue())
    {
        const DWORD woken = WaitForMultipleObjects(2, signals, FALSE, StopSignal::kPollMilliseconds);
        if (woken == WAIT_FAILED)
        {
            std::fprintf(stderr, "orvlservice: the wait failed with error %lu\n",
                         static_cast<unsigned long>(GetLastError()));
            return 1;
        }
        if (woken == WAIT_OBJECT_0 + 1)
        {
            ServeOne(boards, options);
            if (options.once)
            {
                break;
            }
        }
    }
    std::printf("ended\n");
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    // Unbuffered: a script may wait for a line.
    std::setvbuf(stdout, nullptr, _IONBF, 0);

    Options options;
    if (!ParseOptions(count, arguments, options))
    {
        PrintUsage(stderr);
        return 2;
    }
    switch (options.task)
    {
    case Task::Help:
        PrintUsage(stdout);
        return 0;
    case Task::StopOther:
        if (!StopSignal::Send())
        {
            std::fprintf(stderr, "orvlservice: no service is running\n");
            return 1;
        }
        return 0;
    case Task::Serve:
        break;
    }
    return Serve(options);
}
