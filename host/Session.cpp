// host/Session.cpp
//
// Loads and calls the plug-in through its exported names alone.

#include "Session.h"

#include <algorithm>
#include <cstring>

namespace host
{

namespace
{

// More than any payload or reply has, in bytes.
constexpr std::size_t kLongestRecord = 2048;

// The plug-in's event callback has no context argument, so the process has one session, kept here.
Session::Listener theListener;

int __cdecl ReceiveEvent(const char* moduleId, const char* eventName, const void* data, DWORD dataLen)
{
    if (!theListener)
    {
        return 0;
    }
    const auto* bytes = static_cast<const std::byte*>(data);
    theListener({moduleId, eventName, std::vector<std::byte>(bytes, bytes + dataLen), GetCurrentThreadId()});
    return 0;
}

std::vector<wchar_t> Widen(const std::string& text)
{
    std::vector<wchar_t> wide(text.size() + 1);
    MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

template <class Function>
bool Resolve(HMODULE library, const char* name, Function& function)
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
    return function != nullptr;
}

} // namespace

Session::~Session()
{
    Stop();
}

std::string Session::Start(const std::string& library, Listener listener)
{
    m_library = LoadLibraryW(Widen(library).data());
    if (m_library == nullptr)
    {
        return "can't load " + library + " (error " + std::to_string(GetLastError()) + ")";
    }
    if (!Resolve(m_library, "DP_GetModuleId", m_getModuleId) ||
        !Resolve(m_library, "DP_GetDescription", m_getDescription) ||
        !Resolve(m_library, "DP_Initialize", m_initialize) ||
        !Resolve(m_library, "DP_Uninitialize", m_uninitialize) ||
        !Resolve(m_library, "DP_HandleRequest", m_handleRequest))
    {
        Stop();
        return library + " isn't a plug-in: one of its five exports is missing";
    }
    theListener = std::move(listener);
    m_host.SendEvent = ReceiveEvent;
    if (const LONG code = m_initialize(&m_host); code != 0)
    {
        return "DP_Initialize answered " + std::to_string(code);
    }
    return {};
}

void Session::Stop()
{
    if (m_library == nullptr)
    {
        return;
    }
    if (m_uninitialize != nullptr)
    {
        m_uninitialize();
    }
    FreeLibrary(m_library);
    m_library = nullptr;
    theListener = nullptr;
}

std::string Session::ModuleId() const
{
    return m_getModuleId();
}

std::string Session::Description() const
{
    return m_getDescription();
}

Answer Session::Send(const std::string& command, const std::string& user,
                     std::span<const std::byte> payload) const
{
    PM_Request request{};
    std::memcpy(request.command, command.c_str(), std::min(command.size(), sizeof request.command));

    // Two commands read their payload whatever its length says, so the copy is never shorter than a record.
    std::vector<std::byte> input(payload.begin(), payload.end());
    input.resize(std::max(input.size(), kLongestRecord));
    std::vector<std::byte> output(kLongestRecord);
    // A length that comes back unchanged means no reply: no reply fills the whole buffer.
    auto length = static_cast<DWORD>(output.size());

    request.userId = user.c_str();
    request.params = input.data();
    request.paramsLen = static_cast<DWORD>(payload.size());
    request.result = output.data();
    request.resultLen = &length;

    Answer answer;
    answer.code = m_handleRequest(&request);
    if (length < output.size())
    {
        output.resize(length);
        answer.reply = std::move(output);
    }
    return answer;
}

} // namespace host
