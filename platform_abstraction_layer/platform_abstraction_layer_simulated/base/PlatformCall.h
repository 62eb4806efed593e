// base/PlatformCall.h
//
// The entry of every platform function. It decides whether the plug-in made the call, lets an injected
// fault refuse it, sets the last error, and writes the trace. A public function is a thin shell:
//
//     SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path)
//     {
//         PlatformCall call(CallClass::File, "DeleteFileW", SIM_CALLER);
//         call.Arguments(path);
//         return call.Boolean([&] { return files::Delete(path); });
//     }
//
// The work is in an internal function that returns an error number. Internal functions call each other, not
// the public shells.
#pragma once

#include <windef.h>

#include <winerror.h>

#include <string>
#include <type_traits>

/// The place that called the public function in whose body this stands.
#define SIM_CALLER __builtin_return_address(0)

namespace simulated
{

/// What a platform function works on. Calls per request are counted by these classes.
enum class CallClass
{
    File,
    Log, ///< attempts to open a log file
    Profile,
    Registry,
    Object, ///< events, semaphores, mappings and waits
    Thread,
    Memory,
    Module,
    Power,
    Device, ///< device installer and configuration manager
    Driver, ///< DeviceIoControl
    Account,
    Shell,
    Text,
    Com,
    Window,
    System,
    kCount
};

const char* Name(CallClass callClass) noexcept;

/// A value and the error number that goes with it; a call can succeed and still set an error
/// (ERROR_ALREADY_EXISTS).
template <class Value>
struct Outcome
{
    Value value{};
    DWORD error = ERROR_SUCCESS;
};

/// One call of a platform function, from entry to return.
class PlatformCall
{
public:
    PlatformCall(CallClass callClass, const char* function, const void* caller) noexcept;
    ~PlatformCall();
    PlatformCall(const PlatformCall&) = delete;
    PlatformCall& operator=(const PlatformCall&) = delete;

    /// The unique number of the platform call that the calling thread is in; 0 outside of any. What
    /// a call itself calls is part of it, unless the plug-in comes in between.
    static std::uint64_t Current() noexcept;

    /// Makes the present call look anew at what others may have changed since it began.
    static void Renew() noexcept;

    /// True when the plug-in itself made the call: trace, faults and the leak count see only those.
    bool IsObserved() const noexcept
    {
        return m_observed;
    }

    /// True when an injected fault refuses this call; `FaultError` is then the error to return.
    bool IsRefused() const noexcept
    {
        return m_fault != ERROR_SUCCESS;
    }
    DWORD FaultError() const noexcept
    {
        return m_fault;
    }
    const char* Function() const noexcept
    {
        return m_function;
    }

    /// Notes the arguments for the trace; costs nothing when nobody traces.
    template <class... Values>
    void Arguments(const Values&... values)
    {
        if (m_traced)
        {
            (AppendArgument(Describe(values)), ...);
        }
    }

    /// For functions that return TRUE or FALSE and set the last error. `work` returns an error number.
    template <class Work>
    BOOL Boolean(Work work)
    {
        const DWORD error = IsRefused() ? m_fault : work();
        return FinishBoolean(error);
    }

    /// Like `Boolean` for functions that release something: an injected fault changes the result, but
    /// the work is done, so that a refused release doesn't count as a leak.
    template <class Work>
    BOOL Release(Work work)
    {
        const DWORD error = work();
        return FinishBoolean(IsRefused() ? m_fault : error);
    }

    /// For functions whose result is the error number and that leave the last error alone.
    template <class Work>
    LSTATUS Status(Work work)
    {
        const DWORD error = IsRefused() ? m_fault : work();
        Note(error == ERROR_SUCCESS, error, error);
        return static_cast<LSTATUS>(error);
    }

    /// Like `Status`, with the rule of `Release`.
    template <class Work>
    LSTATUS ReleaseStatus(Work work)
    {
        const DWORD error = work();
        const DWORD answered = IsRefused() ? m_fault : error;
        Note(answered == ERROR_SUCCESS, answered, answered);
        return static_cast<LSTATUS>(answered);
    }

    /// For functions that return an HRESULT. An injected fault is one already or becomes one.
    template <class Work>
    HRESULT Com(Work work)
    {
        const HRESULT result = IsRefused() ? HRESULT_FROM_WIN32(m_fault) : work();
        Note(SUCCEEDED(result), static_cast<DWORD>(result), ERROR_SUCCESS);
        return result;
    }

    /// For functions that return a value, `failure` when they fail, and set the last error. `work` returns
    /// an `Outcome`.
    template <class Value, class Work>
    Value Result(Value failure, Work work)
    {
        Outcome<Value> outcome{failure, m_fault};
        if (!IsRefused())
        {
            outcome = work();
        }
        if (outcome.error != ERROR_SUCCESS)
        {
            SetError(outcome.error);
        }
        Note(outcome.value != failure, outcome.value, outcome.error);
        return outcome.value;
    }

    /// For functions that can't fail.
    template <class Value>
    Value Answer(Value value)
    {
        Note(true, value, ERROR_SUCCESS);
        return value;
    }

    /// For functions that return nothing.
    void AnswerNothing();

    static std::string Describe(const wchar_t* text);
    static std::string Describe(const char* text);
    static std::string Describe(const void* pointer);
    static std::string Describe(const GUID& guid);
    static std::string Describe(long long number);
    static std::string Describe(unsigned long long number);
    template <class Number>
    requires std::is_integral_v<Number>
    static std::string Describe(Number number)
    {
        if constexpr (std::is_signed_v<Number>)
        {
            return Describe(static_cast<long long>(number));
        }
        else
        {
            return Describe(static_cast<unsigned long long>(number));
        }
    }

private:
    BOOL FinishBoolean(DWORD error);
    void AppendArgument(const std::string& text);
    template <class Value>
    void Note(bool succeeded, const Value& answer, DWORD error)
    {
        if (m_traced)
        {
            AddToTrace(succeeded, Describe(answer), error);
        }
    }
    void AddToTrace(bool succeeded, const std::string& answer, DWORD error);
    static void SetError(DWORD error) noexcept;

    CallClass m_class;
    const char* m_function;
    const void* m_caller;
    bool m_observed;
    bool m_traced;
    DWORD m_fault;
    std::uint64_t m_outer; ///< the call that this one is made in
    std::string m_arguments;
};

} // namespace simulated
