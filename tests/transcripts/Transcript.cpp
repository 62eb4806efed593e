// tests/transcripts/Transcript.cpp
//
// Rendering.

#include "transcripts/Transcript.h"

#include "acceptance/RequestWords.h"
#include "acceptance/Seeding.h"
#include "machine/Accounts.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace
{

constexpr std::size_t kHeading = 10;

std::string ShowReply(const std::string& command, const Answer& answer)
{
    if (!answer.reply.has_value())
    {
        return "none";
    }
    const std::string size = std::to_string(answer.reply->size()) + " bytes";
    return answer.reply->empty() ? size : size + ": " + ReplyInWords(command, *answer.reply);
}

// Accounts by their names instead of their SIDs.
std::string WithNames(std::string text)
{
    static const std::vector<simulated::Account> accounts = simulated::Accounts::All();
    for (const simulated::Account& account : accounts)
    {
        for (std::size_t position = text.find(account.sid); position != std::string::npos;
             position = text.find(account.sid))
        {
            text.replace(position, account.sid.size(), '(' + account.name + ')');
        }
    }
    return text;
}

void Add(std::vector<std::string>& lines, std::string heading, const std::string& text)
{
    heading.resize(kHeading, ' ');
    std::string line = "  " + heading + WithNames(text);
    line.erase(line.find_last_not_of(' ') + 1);
    lines.push_back(line);
}

// Irrelevant differences between generations or runs, and their placeholders.
std::string Neutral(std::string line)
{
    struct Replacement
    {
        const char* beginning;
        const char* shown;
    };
    constexpr Replacement kReplacements[] = {{"iHandlePowrProfDll: 0x", "(handle)"},
                                             {"Windows version ", "(version)"}};
    for (const Replacement& row : kReplacements)
    {
        if (line.starts_with(row.beginning))
        {
            line = std::string(row.beginning) + row.shown;
        }
    }
    return line;
}

// The lines of a log. An empty line belongs to the line before, whose format ends in a line end of
// its own; a blank at an end is shown.
void AddLog(std::vector<std::string>& lines, const char* heading, const std::vector<std::string>& log)
{
    for (std::size_t index = 0; index < log.size(); ++index)
    {
        std::string line = Neutral(log[index]);
        if (index + 1 < log.size() && log[index + 1].empty())
        {
            line += "\\n";
            ++index;
        }
        Add(lines, heading, line.ends_with(' ') ? line + '$' : line);
    }
}

} // namespace

std::vector<std::string> Show(const Sample& sample, const RequestOutcome& outcome,
                              const std::vector<std::string>& changes)
{
    std::vector<std::string> lines;
    Add(lines, "result", std::to_string(outcome.answer.code));
    Add(lines, "reply", ShowReply(sample.command, outcome.answer));
    for (const Event& event : outcome.events)
    {
        Add(lines, "event", event.name + ' ' + std::to_string(event.Number()));
    }
    for (const service::Request& request : outcome.serviceRequests)
    {
        Add(lines, "service",
            "code " + std::to_string(request.code) + ", value " + std::to_string(request.value) + ", text " +
                seeding::Utf8(request.text));
    }
    AddLog(lines, "trxpm", outcome.pluginLog);
    AddLog(lines, "orvl", outcome.engineLog);
    AddLog(lines, "debugger", outcome.debugger);
    for (const std::string& line : changes)
    {
        Add(lines, "change", line);
    }
    return lines;
}
