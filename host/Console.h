// host/Console.h
//
// Runs what the user types or wrote into a script: requests, and the few words that are the host's own.
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
    /// -1 when the words make no request.
    int Run(const Words& words);

    /// Runs line by line until the input ends or "quit". `prompt` is empty for a script; a script's lines are
    /// shown before they run. The number of lines that made no request or waited in vain.
    int RunLines(std::istream& lines, const std::string& prompt);

private:
    struct OwnWord;
    static std::span<const OwnWord> OwnWords();

    // The words of the host's own. False, with a message, when the line makes no sense or a wait was in vain.
    bool List(const Words& words);
    bool SetUser(const Words& words);
    bool Wait(const Words& words);
    bool Pause(const Words& words);
    bool Echo(const Words& words);
    bool Help(const Words& words);
    bool Quit(const Words& words);

    /// Carries out a word of the host's own or sends a request; false as above.
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
