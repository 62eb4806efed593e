// host/Console.h
//
// Runs what the user types or wrote into a script: requests, and the few words that are the host's own.
#pragma once

#include "Printing.h"
#include "Session.h"

#include <istream>
#include <string>
#include <vector>

namespace host
{

class Console
{
public:
    Console(Session& session, std::string user, Style style);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Prints an event and keeps it for `wait`. Any thread.
    void Receive(const Event& event);

    /// Sends one request: the command's name, then the fields of its payload. The plug-in's result code, or
    /// -1 when the words make no request.
    int Run(const std::vector<std::string>& words);

    /// Runs line by line until the input ends or "quit". `prompt` is empty for a script; a script's lines are
    /// shown before they run. The number of lines that made no request.
    int RunLines(std::istream& lines, const std::string& prompt);

private:
    /// Carries out a word of the host's own ("user", "wait", "sleep", "list", "help"). False when it is none.
    bool RunOwn(const std::vector<std::string>& words, bool& understood);
    bool WaitFor(const std::string& event, int milliseconds);
    void Print(const std::string& text);

    Session& m_session;
    std::string m_user;
    Style m_style;
    CRITICAL_SECTION m_section;
    HANDLE m_arrived;            ///< set when an event comes
    std::vector<Event> m_events; ///< those that no `wait` has taken yet
};

} // namespace host
