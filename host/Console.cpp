// host/Console.cpp
//
// The command loop.

#include "Console.h"

#include "Payload.h"
#include "TextTools.h"

#include "foundation/Owners.h"

#include <algorithm>
#include <cstdio>

namespace host
{

namespace
{

constexpr const char* kHelp =
    "A line is a command with the fields of its payload:\n"
    "  GET_INT_FROM_CONFIG type=0 file=ORVLCfg.ini section=ORVLCfg item=MaxBrightLevel default=7\n"
    "  APPLY_SCHEME 3\n"
    "Words of the host's own:\n"
    "  list             all commands with payload and reply\n"
    "  user NAME        the account for which the next requests are made\n"
    "  wait EVENT [MS]  waits for an event, 5000 ms unless told otherwise\n"
    "  sleep MS         waits\n"
    "  echo TEXT        prints a line\n"
    "  quit             ends\n";

constexpr int kDefaultWait = 5000;

int MillisecondsOf(const std::vector<std::string>& words, std::size_t place, int otherwise)
{
    return place < words.size() ? ParseNumber(words[place]).value_or(otherwise) : otherwise;
}

} // namespace

Console::Console(Session& session, std::string user, Style style)
    : m_session(session), m_user(std::move(user)), m_style(style),
      m_arrived(CreateEventW(nullptr, FALSE, FALSE, nullptr))
{
    InitializeCriticalSection(&m_section);
}

Console::~Console()
{
    CloseHandle(m_arrived);
    DeleteCriticalSection(&m_section);
}

void Console::Print(const std::string& text)
{
    const owners::SectionLock lock(m_section);
    std::fputs(text.c_str(), stdout);
    std::fflush(stdout);
}

void Console::Receive(const Event& event)
{
    Print(Show(event, m_style));
    {
        const owners::SectionLock lock(m_section);
        m_events.push_back(event);
    }
    SetEvent(m_arrived);
}

bool Console::WaitFor(const std::string& event, int milliseconds)
{
    const DWORD start = GetTickCount();
    for (;;)
    {
        {
            const owners::SectionLock lock(m_section);
            const auto found =
                std::find_if(m_events.begin(), m_events.end(),
                             [&event](const Event& came) { return EqualIgnoringCase(came.name, event); });
            if (found != m_events.end())
            {
                m_events.erase(found);
                return true;
            }
        }
        const DWORD passed = GetTickCount() - start;
        if (passed >= static_cast<DWORD>(milliseconds))
        {
            return false;
        }
        WaitForSingleObject(m_arrived, static_cast<DWORD>(milliseconds) - passed);
    }
}

int Console::Run(const std::vector<std::string>& words)
{
    const CommandEntry* entry = FindCommand(words.front());
    const RecordShape& shape = entry == nullptr ? kNoRecord : entry->payload;
    const Payload payload = BuildPayload(shape, std::span(words).subspan(1));
    if (!payload.error.empty())
    {
        std::fprintf(stderr, "%s: %s\n", words.front().c_str(), payload.error.c_str());
        return -1;
    }
    const std::string command = entry == nullptr ? words.front() : entry->name;
    const Answer answer = m_session.Send(command, ToWire(m_user), payload.bytes);
    Print(Show(command, entry, answer, m_style));
    return static_cast<int>(answer.code);
}

bool Console::RunOwn(const std::vector<std::string>& words, bool& understood)
{
    const std::string& word = words.front();
    understood = true;
    if (word == "list")
    {
        Print(ShowCatalogue(m_style));
    }
    else if (word == "help" || word == "?")
    {
        Print(kHelp);
    }
    else if (word == "echo")
    {
        std::string line;
        for (std::size_t place = 1; place < words.size(); ++place)
        {
            line += (place == 1 ? "" : " ") + words[place];
        }
        Print(line + '\n');
    }
    else if (word == "user" && words.size() == 2)
    {
        m_user = words[1];
    }
    else if (word == "sleep" && words.size() == 2)
    {
        Sleep(static_cast<DWORD>(std::max(0, MillisecondsOf(words, 1, 0))));
    }
    else if (word == "wait" && words.size() >= 2)
    {
        understood = WaitFor(words[1], MillisecondsOf(words, 2, kDefaultWait));
        if (!understood)
        {
            std::fprintf(stderr, "no event %s came\n", words[1].c_str());
        }
    }
    else
    {
        return false;
    }
    return true;
}

int Console::RunLines(std::istream& lines, const std::string& prompt)
{
    int faults = 0;
    std::string line;
    for (;;)
    {
        Print(prompt);
        if (!std::getline(lines, line))
        {
            return faults;
        }
        const auto words = SplitWords(line);
        if (!words)
        {
            std::fprintf(stderr, "a quote isn't closed: %s\n", line.c_str());
            ++faults;
            continue;
        }
        if (words->empty())
        {
            continue;
        }
        if (words->front() == "quit" || words->front() == "exit")
        {
            return faults;
        }
        if (prompt.empty() && m_style == Style::Text && words->front() != "echo")
        {
            Print("trx> " + line + '\n');
        }
        bool understood = true;
        if (!RunOwn(*words, understood))
        {
            understood = Run(*words) >= 0;
        }
        faults += understood ? 0 : 1;
    }
}

} // namespace host
