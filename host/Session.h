// host/Session.h
//
// The loaded plug-in, used as the host service does: load, start, send requests, take events, stop, unload.
#pragma once

#include <windows.h>

#include "plugin/HostRecords.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace host
{

/// An event as it arrived; `threadId` shows whether a request or the plug-in's own thread sent it.
struct Event
{
    std::string module;
    std::string name;
    std::vector<std::byte> data;
    DWORD threadId;
};

struct Answer
{
    LONG code = 0;                ///< result code of the request
    std::vector<std::byte> reply; ///< what `resultLen` counted; empty when nothing was written
};

class Session
{
public:
    /// What is called for each event, on the thread that sends it.
    using Listener = std::function<void(const Event&)>;

    Session() = default;
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Loads the library and starts the plug-in. Returns an empty text, or what went wrong.
    std::string Start(const std::string& library, Listener listener);

    /// Stops the plug-in and unloads it; the destructor does the same.
    void Stop();

    std::string ModuleId() const;
    std::string Description() const;

    /// Sends one request. `user` is narrow, in the ANSI code page.
    Answer Send(const std::string& command, const std::string& user,
                std::span<const std::byte> payload) const;

private:
    HMODULE m_library = nullptr;
    PM_HostInterface m_host{};
    const char*(__cdecl* m_getModuleId)() = nullptr;
    const char*(__cdecl* m_getDescription)() = nullptr;
    LONG(__cdecl* m_initialize)(PM_HostInterface*) = nullptr;
    LONG(__cdecl* m_uninitialize)() = nullptr;
    LONG(__cdecl* m_handleRequest)(PM_Request*) = nullptr;
};

} // namespace host
