// modules/powrprof/windows/base/PlatformCall.h
//
// The entry of the exported functions where the power manager is built for Windows, as a PowrProf.dll for
// a machine whose own is a stub: it sets the last error and leaves out what only the simulated platform has.
#pragma once

#include <windows.h>

#define SIM_API extern "C"
#define SIM_CALLER nullptr

namespace simulated
{

enum class CallClass
{
    Power
};

class PlatformCall
{
public:
    PlatformCall(CallClass, const char*, const void*) noexcept
    {
    }

    template <class... Values>
    void Arguments(const Values&...) noexcept
    {
    }

    bool IsRefused() const noexcept
    {
        return false;
    }

    template <class Work>
    BOOL Boolean(Work work)
    {
        const DWORD error = work();
        if (error != ERROR_SUCCESS)
        {
            SetLastError(error);
        }
        return error == ERROR_SUCCESS ? TRUE : FALSE;
    }

    template <class Work>
    LSTATUS Status(Work work)
    {
        return static_cast<LSTATUS>(work());
    }

    template <class Value>
    Value Answer(Value value) noexcept
    {
        return value;
    }
};

} // namespace simulated
