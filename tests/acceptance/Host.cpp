// tests/acceptance/Host.cpp
//
// Loading and calling the built library.

#include "acceptance/Host.h"

#include "acceptance/Environment.h"
#include "acceptance/GuardedBytes.h"
#include "foundation/Owners.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>

namespace
{

constexpr auto kLongestWait = std::chrono::seconds(10);

// What the reply buffer holds until something is written there.
constexpr std::byte kUnwritten{0xEE};

Host* theHost = nullptr;

template <class Function>
bool Resolve(HMODULE library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    return function != nullptr;
}

LONG NumberIn(std::span<const std::byte> bytes)
{
    LONG number = 0;
    EXPECT_EQ(sizeof number, bytes.size());
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

} // namespace

LONG Answer::Number() const
{
    EXPECT_TRUE(reply.has_value()) << "no reply";
    return NumberIn(reply.value_or(std::vector<std::byte>()));
}

LONG Event::Number() const
{
    return NumberIn(data);
}

Host::Host() : user(environment::UserName()), m_arrived(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    InitializeCriticalSection(&m_section);
    EXPECT_EQ(nullptr, theHost) << "there is a host already";
    theHost = this;
    m_interface.SendEvent = Receive;
    const bool loaded = Load();
    EXPECT_TRUE(loaded) << "can't load the plug-in, error " << GetLastError();
    if (loaded)
    {
        EXPECT_EQ(TRX_OPERATION_OK, Initialize());
    }
}

Host::~Host()
{
    Unload();
    theHost = nullptr;
    CloseHandle(m_arrived);
    DeleteCriticalSection(&m_section);
}

bool Host::Load()
{
    m_library = LoadLibraryW(L"pm_limited_support.dll");
    return m_library != nullptr && Resolve(m_library, "DP_GetModuleId", m_getModuleId) &&
           Resolve(m_library, "DP_GetDescription", m_getDescription) &&
           Resolve(m_library, "DP_Initialize", m_initialize) &&
           Resolve(m_library, "DP_Uninitialize", m_uninitialize) &&
           Resolve(m_library, "DP_HandleRequest", m_handleRequest);
}

void Host::Unload()
{
    if (m_library != nullptr)
    {
        Uninitialize();
        FreeLibrary(m_library);
        m_library = nullptr;
    }
}

LONG Host::Initialize()
{
    return Initialize(&m_interface);
}

LONG Host::Initialize(PM_HostInterface* host)
{
    return m_initialize(host);
}

LONG Host::Uninitialize()
{
    return m_uninitialize();
}

const char* Host::ModuleId() const
{
    return m_getModuleId();
}

const char* Host::Description() const
{
    return m_getDescription();
}

Answer Host::Send(const std::string& command, std::span<const std::byte> payload)
{
    return SendFor(user, command, payload);
}

Answer Host::SendFor(const std::string& userId, const std::string& command,
                     std::span<const std::byte> payload)
{
    GuardedBytes params(payload);
    GuardedBytes result(room, kUnwritten);
    GuardedBytes resultLen(sizeof(DWORD));
    const auto capacity = static_cast<DWORD>(room);
    std::memcpy(resultLen.Data(), &capacity, sizeof capacity);

    PM_Request request{};
    std::memcpy(request.command, command.data(), std::min(command.size(), sizeof request.command));
    request.userId = userId.c_str();
    request.params = params.Data();
    request.paramsLen = static_cast<DWORD>(payload.size());
    request.result = result.Data();
    request.resultLen = reinterpret_cast<DWORD*>(resultLen.Data());

    Answer answer;
    answer.code = Send(&request);
    EXPECT_TRUE(params.AreGuardsIntact() && result.AreGuardsIntact() && resultLen.AreGuardsIntact())
        << command;
    EXPECT_TRUE(std::equal(payload.begin(), payload.end(), params.Data()))
        << command << " changed its payload";
    DWORD size = 0;
    std::memcpy(&size, resultLen.Data(), sizeof size);
    std::size_t written = 0;
    if (size != capacity)
    {
        EXPECT_LT(size, capacity) << command;
        written = std::min<std::size_t>(size, room);
        answer.reply = std::vector<std::byte>(result.Data(), result.Data() + written);
    }
    // A battery whose firmware record can't be read is the one reply that is written and not counted.
    const bool isUncounted = command == "GET_BATTERY_INFO" && answer.code == TRX_OPERATION_FAIL && size == 0;
    EXPECT_TRUE(isUncounted || std::all_of(result.Data() + written, result.Data() + room,
                                           [](std::byte present) { return present == kUnwritten; }))
        << command << " wrote more than it counted";
    return answer;
}

LONG Host::Send(PM_Request* request)
{
    return m_handleRequest(request);
}

std::vector<Event> Host::TakeEvents()
{
    const owners::SectionLock lock(m_section);
    std::vector<Event> events(m_events.begin(), m_events.end());
    m_events.clear();
    ResetEvent(m_arrived);
    return events;
}

std::optional<Event> Host::WaitForEvent()
{
    // The clock of a notebook may be instant, so the limit uses the real one.
    const auto end = std::chrono::steady_clock::now() + kLongestWait;
    while (WaitForSingleObject(m_arrived, 1000) == WAIT_TIMEOUT && std::chrono::steady_clock::now() < end)
    {
    }
    const owners::SectionLock lock(m_section);
    if (m_events.empty())
    {
        return std::nullopt;
    }
    Event event = m_events.front();
    m_events.pop_front();
    if (m_events.empty())
    {
        ResetEvent(m_arrived);
    }
    return event;
}

int __cdecl Host::Receive(const char* moduleId, const char* eventName, const void* data, DWORD dataLen)
{
    const auto* const bytes = static_cast<const std::byte*>(data);
    theHost->Keep({moduleId, eventName, {bytes, bytes + dataLen}, GetCurrentThreadId()});
    return 0;
}

void Host::Keep(Event event)
{
    if (onEvent)
    {
        onEvent(event);
    }
    const owners::SectionLock lock(m_section);
    m_events.push_back(std::move(event));
    SetEvent(m_arrived);
}
