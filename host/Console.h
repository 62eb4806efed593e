// host/Console.h
//
// Runs the lines that are typed or stand in a script: requests, and a few commands of the host itself.
#pragma once

#include "Printing.h"
#include "Session.h"

#include <istream>
#include <span>
#include <string>
#include <vector>

namespace host
{

class Console
{
public:
    using Words = std::vector<std::string>;

    Console(Session& session, std::string user, Style style);
    ~Console();
    Console(const Console&) = delete;
    Console& operator=(const Console&) = delete;

    /// Prints an event and keeps it for `wait`. Any thread.
    void Receive(const Event& event);

    /// Sends one request: the command's name, then the fields of its payload. The plug-in's result code, or
    /// -1 when they are no valid request.
    int Run(const Words& words);

    /// Runs line by line until the input ends or "quit". `prompt` is empty for a script; a script's lines are
    /// shown before they run. Returns the number of malformed lines and of waits that timed out.
    int RunLines(std::istream& lines, const std::string& prompt);

private:
    struct OwnCommand;
    static std::span<const OwnCommand> OwnCommands();

    // The host's own commands. False, with a message, for a malformed line or a wait that timed out.
    bool List(const Words& words);
    bool SetUser(const Words& words);
    bool Wait(const Words& words);
    bool Pause(const Words& words);
    bool Echo(const Words& words);
    bool Help(const Words& words);
    bool Quit(const Words& words);

    /// Runs one of the host's own commands or sends a request; false as above.
    bool RunLine(const Words& words);
    bool WaitFor(const std::string& event, DWORD milliseconds);
    void Print(const std::string& text);

    /// Prints the message to standard error. Always false.
    static bool Fail(const std::string& message);

    Session& m_session;
    std::string m_user;
    Style m_style;
    bool m_isOver = false; ///< "quit" was read
    CRITICAL_SECTION m_section;
    HANDLE m_arrived;            ///< set when an event comes
    std::vector<Event> m_events; ///< those that no `wait` has taken yet
};

} // namespace host
