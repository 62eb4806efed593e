// base/DebugOutput.cpp
//
// The list of texts sent to the debugger channel.

#include "base/DebugOutput.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <mutex>

namespace simulated
{

namespace
{

constexpr std::size_t kMostTexts = 1000;

// Never destroyed: a thread may still write while the process ends.
struct Channel
{
    std::mutex mutex;
    std::deque<std::string> texts;
    bool shown;

    Channel()
    {
        const char* choice = std::getenv("SIM_DEBUG_OUTPUT");
        shown = choice != nullptr && std::strcmp(choice, "1") == 0;
    }
};

Channel& TheChannel()
{
    static Channel& channel = *new Channel;
    return channel;
}

} // namespace

std::vector<std::string> DebugOutput::Texts()
{
    Channel& channel = TheChannel();
    const std::lock_guard lock(channel.mutex);
    return {channel.texts.begin(), channel.texts.end()};
}

void DebugOutput::Clear()
{
    Channel& channel = TheChannel();
    const std::lock_guard lock(channel.mutex);
    channel.texts.clear();
}

void DebugOutput::Send(const std::string& text)
{
    Channel& channel = TheChannel();
    const std::lock_guard lock(channel.mutex);
    if (channel.shown)
    {
        std::fputs(text.c_str(), stderr);
        if (text.empty() || text.back() != '\n')
        {
            std::fputc('\n', stderr);
        }
    }
    channel.texts.push_back(text);
    if (channel.texts.size() > kMostTexts)
    {
        channel.texts.pop_front();
    }
}

} // namespace simulated
