// base/PlatformCall.cpp
//
// The entry of the platform functions: observation, faults, last error, trace.

#include "base/PlatformCall.h"

#include "base/GuidText.h"
#include "base/Text.h"
#include "base/Trace.h"

#include <winbase.h>

#include <array>
#include <atomic>
#include <cstdio>

namespace simulated
{

namespace
{

constexpr std::array<const char*, static_cast<std::size_t>(CallClass::kCount)> kClassNames = {
    "file",   "log",    "profile", "registry", "object", "thread", "memory", "module", "power",
    "device", "driver", "account", "shell",    "text",   "com",    "window", "system"};

// Long texts would swamp the line; their ends are seldom of interest.
constexpr std::size_t kLongestText = 120;

thread_local DWORD lastError = ERROR_SUCCESS;
thread_local std::uint64_t currentCall = 0;
std::atomic<std::uint64_t> lastCall{0};

} // namespace

const char* Name(CallClass callClass) noexcept
{
    return kClassNames[static_cast<std::size_t>(callClass)];
}

PlatformCall::PlatformCall(CallClass callClass, const char* function, const void* caller) noexcept
    : m_class(callClass), m_function(function), m_caller(caller), m_observed(IsInPlugIn(caller)),
      m_traced(m_observed && Trace::IsListening()),
      m_fault(m_observed ? Trace::Enter(callClass, function) : ERROR_SUCCESS), m_outer(currentCall)
{
    if (m_observed || m_outer == 0)
    {
        currentCall = ++lastCall;
    }
}

PlatformCall::~PlatformCall()
{
    currentCall = m_outer;
}

std::uint64_t PlatformCall::Current() noexcept
{
    return currentCall;
}

void PlatformCall::Renew() noexcept
{
    currentCall = currentCall == 0 ? 0 : ++lastCall;
}

void PlatformCall::AppendArgument(const std::string& text)
{
    if (!m_arguments.empty())
    {
        m_arguments += ", ";
    }
    m_arguments += text;
}

BOOL PlatformCall::FinishBoolean(DWORD error)
{
    if (error != ERROR_SUCCESS)
    {
        SetError(error);
    }
    if (m_traced)
    {
        AddToTrace(error == ERROR_SUCCESS, error == ERROR_SUCCESS ? "TRUE" : "FALSE", error);
    }
    return error == ERROR_SUCCESS ? TRUE : FALSE;
}

void PlatformCall::SetError(DWORD error) noexcept
{
    lastError = error;
}

void PlatformCall::AnswerNothing()
{
    if (m_traced)
    {
        AddToTrace(true, "nothing", ERROR_SUCCESS);
    }
}

void PlatformCall::AddToTrace(bool succeeded, const std::string& answer, DWORD error)
{
    Trace::Add({m_class, m_function, m_arguments, answer, succeeded, error, m_caller});
}

std::string PlatformCall::Describe(const wchar_t* text)
{
    // A text pointer may hold a resource or ordinal number.
    const auto number = reinterpret_cast<std::uintptr_t>(text);
    return number >= 0x10000 ? Describe(ToUtf8(text).c_str()) : number == 0 ? "null" : Describe(number);
}

std::string PlatformCall::Describe(const char* text)
{
    const auto number = reinterpret_cast<std::uintptr_t>(text);
    if (number < 0x10000)
    {
        return number == 0 ? "null" : Describe(number);
    }
    const std::string_view shown = text;
    return '"' + std::string(shown.substr(0, kLongestText)) + (shown.size() > kLongestText ? "...\"" : "\"");
}

std::string PlatformCall::Describe(const void* pointer)
{
    if (pointer == nullptr)
    {
        return "null";
    }
    char text[24];
    std::snprintf(text, sizeof text, "%p", pointer);
    return text;
}

std::string PlatformCall::Describe(const GUID& guid)
{
    return ToText(guid);
}

std::string PlatformCall::Describe(long long number)
{
    return std::to_string(number);
}

std::string PlatformCall::Describe(unsigned long long number)
{
    if (number < 1024)
    {
        return std::to_string(number);
    }
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", number);
    return text;
}

} // namespace simulated

// Neither is traced as a platform call: reading the last error is no work, and a fault there
// would hide the error that it reports.
SIM_API DWORD WINAPI GetLastError()
{
    return simulated::lastError;
}

SIM_API void WINAPI SetLastError(DWORD error)
{
    simulated::lastError = error;
}
