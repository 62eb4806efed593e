// modules/kernel32/DebugOutput.cpp
//
// OutputDebugString: texts go to a list instead of a debugger.

#include "modules/kernel32/DebugOutput.h"

#include "base/CodePage.h"
#include "base/PlatformCall.h"
#include "base/Text.h"
#include "machine/Machine.h"

#include <windows.h>

#include <cstdio>
#include <cstdlib>
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
    std::vector<std::string> texts;
};

Channel& TheChannel()
{
    static Channel& channel = *new Channel;
    return channel;
}

bool IsShown()
{
    const char* const choice = std::getenv("SIM_DEBUG_OUTPUT");
    return choice != nullptr && std::string_view(choice) == "1";
}

void Send(PlatformCall& call, const std::string& text)
{
    if (!call.IsRefused())
    {
        DebugOutput::Send(text);
    }
    call.AnswerNothing();
}

} // namespace

std::vector<std::string> DebugOutput::Texts()
{
    Channel& channel = TheChannel();
    const std::lock_guard lock(channel.mutex);
    return channel.texts;
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
    static const bool kIsShown = IsShown();
    if (kIsShown)
    {
        std::fprintf(stderr, text.ends_with('\n') ? "%s" : "%s\n", text.c_str());
    }
    if (channel.texts.size() == kMostTexts)
    {
        channel.texts.erase(channel.texts.begin());
    }
    channel.texts.push_back(text);
}

} // namespace simulated

using namespace simulated;

SIM_API void WINAPI OutputDebugStringW(LPCWSTR text)
{
    PlatformCall call(CallClass::System, "OutputDebugStringW", SIM_CALLER);
    call.Arguments(text);
    Send(call, ToUtf8(text));
}

SIM_API void WINAPI OutputDebugStringA(LPCSTR text)
{
    PlatformCall call(CallClass::System, "OutputDebugStringA", SIM_CALLER);
    call.Arguments(text);
    Send(call, text == nullptr ? std::string() : Decode(Machine::AnsiEncoding(), text));
}
