// host/Console.cpp
//
// The command loop.

#include "Console.h"

#include "Payload.h"
#include "TextTools.h"

#include "foundation/Owners.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <span>

namespace host
{

namespace
{

constexpr std::uint32_t kDefaultWait = 5000;

constexpr std::size_t kUsageWidth = 17;

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

bool Console::Fail(const std::string& message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    return false;
}

bool Console::WaitFor(const std::string& event, DWORD milliseconds)
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
        if (passed >= milliseconds)
        {
            return false;
        }
        WaitForSingleObject(m_arrived, milliseconds - passed);
    }
}

int Console::Run(const Words& words)
{
    const CommandEntry* entry = FindCommand(words.front());
    const RecordShape& shape = entry == nullptr ? kNoRecord : entry->payload;
    const Payload payload = BuildPayload(shape, std::span(words).subspan(1));
    if (!payload.error.empty())
    {
        Fail(words.front() + ": " + payload.error);
        return -1;
    }
    const std::string command = entry == nullptr ? words.front() : entry->info.name;
    const Answer answer = m_session.Send(command, ToWire(m_user), payload.bytes);
    Print(Show(command, entry, answer, m_style));
    return static_cast<int>(answer.code);
}

// A command of the host itself: its usage, how many words its line may have, what it does.
struct Console::OwnCommand
{
    const char* name;
    const char* otherName; // the same again where it has none
    std::size_t fewestWords;
    std::size_t mostWords;
    bool (Console::*run)(const Words& words);
    const char* usage;
    const char* help;
};

std::span<const Console::OwnCommand> Console::OwnCommands()
{
    constexpr std::size_t kAnyNumber = std::numeric_limits<std::size_t>::max();
    static constexpr OwnCommand kOwnCommands[] = {
        {"list", "list", 1, 1, &Console::List, "list", "all commands with payload and reply"},
        {"user", "user", 2, 2, &Console::SetUser, "user NAME",
         "the account for which the next requests are made"},
        {"wait", "wait", 2, 3, &Console::Wait, "wait EVENT [MS]",
         "waits for an event, 5000 ms unless told otherwise"},
        {"sleep", "sleep", 2, 2, &Console::Pause, "sleep MS", "waits"},
        {"echo", "echo", 1, kAnyNumber, &Console::Echo, "echo TEXT", "prints a line"},
        {"help", "?", 1, 1, &Console::Help, "help", "this text"},
        {"quit", "exit", 1, 1, &Console::Quit, "quit", "ends"},
    };
    return kOwnCommands;
}

bool Console::List(const Words&)
{
    Print(ShowCatalogue(m_style));
    return true;
}

bool Console::SetUser(const Words& words)
{
    m_user = words[1];
    return true;
}

bool Console::Wait(const Words& words)
{
    const auto milliseconds = words.size() > 2 ? ParseMilliseconds(words[2]) : kDefaultWait;
    if (!milliseconds)
    {
        return Fail(words[2] + " is no time in milliseconds");
    }
    return WaitFor(words[1], *milliseconds) || Fail("no event " + words[1] + " came");
}

bool Console::Pause(const Words& words)
{
    const auto milliseconds = ParseMilliseconds(words[1]);
    if (!milliseconds)
    {
        return Fail(words[1] + " is no time in milliseconds");
    }
    Sleep(*milliseconds);
    return true;
}

bool Console::Echo(const Words& words)
{
    std::string line;
    for (std::size_t index = 1; index < words.size(); ++index)
    {
        line += (index == 1 ? "" : " ") + words[index];
    }
    Print(line + '\n');
    return true;
}

bool Console::Help(const Words&)
{
    std::string text =
        "A line is a command with the fields of its payload:\n"
        "  GET_INT_FROM_CONFIG type=0 file=ORVLCfg.ini section=ORVLCfg item=MaxBrightLevel default=7\n"
        "  APPLY_SCHEME 3\n"
        "Words of the host's own:\n";
    for (const OwnCommand& command : OwnCommands())
    {
        std::string usage = command.usage;
        usage.resize(std::max(usage.size(), kUsageWidth), ' ');
        text += "  " + usage + command.help + '\n';
    }
    Print(text);
    return true;
}

bool Console::Quit(const Words&)
{
    m_isOver = true;
    return true;
}

bool Console::RunLine(const Words& words)
{
    for (const OwnCommand& own : OwnCommands())
    {
        if (words.front() != own.name && words.front() != own.otherName)
        {
            continue;
        }
        const bool isComplete = words.size() >= own.fewestWords && words.size() <= own.mostWords;
        return isComplete ? (this->*own.run)(words) : Fail(std::string("usage: ") + own.usage);
    }
    return Run(words) >= 0;
}

int Console::RunLines(std::istream& lines, const std::string& prompt)
{
    int faults = 0;
    std::string line;
    while (!m_isOver)
    {
        Print(prompt);
        if (!std::getline(lines, line))
        {
            break;
        }
        const auto words = SplitWords(line);
        if (!words)
        {
            Fail("a quote isn't closed: " + line);
            ++faults;
            continue;
        }
        if (words->empty())
        {
            continue;
        }
        if (prompt.empty() && m_style == Style::Text && words->front() != "echo")
        {
            Print("trx> " + line + '\n');
        }
        faults += RunLine(*words) ? 0 : 1;
    }
    return faults;
}

} // namespace host
