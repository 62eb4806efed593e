// tests/acceptance/Host.h
//
// The tests' host service: it loads the built library, uses its exported names alone, sends
// requests and takes events.
//
//     Host host;
//     EXPECT_EQ(1, host.Send("SET_LAN_STATUS", Payload(LONG{0})).code);
#pragma once

#include "plugin/HostRecords.h"

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// What came back from a request.
struct Answer
{
    LONG code = 0;

    /// What `resultLen` counted; nothing where it was left alone.
    std::optional<std::vector<std::byte>> reply;

    /// The 4-byte reply; a test fails where there is none.
    LONG Number() const;
};

/// An event as it arrived.
struct Event
{
    std::string module;
    std::string name;
    std::vector<std::byte> data;
    DWORD thread;

    LONG Number() const;
};

/// The bytes of a record, or of a single number, as a payload.
template <class Record>
std::span<const std::byte> Payload(const Record& record)
{
    return std::as_bytes(std::span(&record, 1));
}

/// One object at a time: the plug-in's event function has no context argument.
class Host
{
public:
    /// Loads the library and starts the plug-in; a test fails when that doesn't work.
    Host();

    /// Stops and unloads it.
    ~Host();
    Host(const Host&) = delete;
    Host& operator=(const Host&) = delete;

    /// The user whom requests name by default; at first the running account. Narrow, in the ANSI code
    /// page.
    std::string user;

    /// Sends a request with buffers at odd addresses between guards; a test fails when a guard was touched.
    Answer Send(const std::string& command, std::span<const std::byte> payload = {});

    /// The same for another user than `user`. Threads may send at once.
    Answer SendFor(const std::string& userId, const std::string& command,
                   std::span<const std::byte> payload = {});

    /// Sends a request as it stands, null included.
    LONG Send(PM_Request* request);

    /// Room for the reply of the requests to come.
    std::size_t room = 2048;

    /// The events since the last call.
    std::vector<Event> TakeEvents();

    /// The next event, waited for up to ten seconds.
    std::optional<Event> WaitForEvent();

    /// Called on the sender's thread for each event, before it is kept.
    std::function<void(const Event&)> onEvent;

    // The steps of the life cycle, for tests about it, and for those that want the notification thread out of
    // the way: requests are served, and events of requests sent, after `Uninitialize` too.
    bool Load();
    void Unload();
    LONG Initialize();
    LONG Initialize(PM_HostInterface* host);
    LONG Uninitialize();
    const char* ModuleId() const;
    const char* Description() const;

private:
    static int __cdecl Receive(const char* moduleId, const char* eventName, const void* data, DWORD dataLen);
    void Keep(Event event);

    HMODULE m_library = nullptr;
    PM_HostInterface m_interface{0, Receive};
    const char*(__cdecl* m_getModuleId)() = nullptr;
    const char*(__cdecl* m_getDescription)() = nullptr;
    LONG(__cdecl* m_initialize)(PM_HostInterface*) = nullptr;
    LONG(__cdecl* m_uninitialize)() = nullptr;
    LONG(__cdecl* m_handleRequest)(PM_Request*) = nullptr;

    CRITICAL_SECTION m_section;
    HANDLE m_arrived; // signalled while `m_events` isn't empty
    std::deque<Event> m_events;
};
