// modules/ole32/Apartments.cpp
//
// Which threads have initialised COM, for which kind of apartment and how often.

#include "modules/ole32/Apartments.h"

#include "base/PlatformCall.h"
#include "base/Trace.h"

#include <objbase.h>

#include <atomic>
#include <vector>

namespace simulated
{

namespace
{

std::atomic<int> multithreadedThreads{0};
std::atomic<std::uintptr_t> nextEntry{1};

// What the calling thread has initialised.
class Membership
{
public:
    ~Membership()
    {
        while (!m_entries.empty())
        {
            Leave();
        }
    }

    bool IsMember() const
    {
        return !m_entries.empty();
    }

    HRESULT Enter(bool isMultithreaded, const PlatformCall& call)
    {
        if (IsMember() && isMultithreaded != m_isMultithreaded)
        {
            return RPC_E_CHANGED_MODE;
        }
        const bool isFirst = !IsMember();
        if (isFirst)
        {
            m_isMultithreaded = isMultithreaded;
            multithreadedThreads += isMultithreaded ? 1 : 0;
        }
        const void* const entry = reinterpret_cast<const void*>(nextEntry++);
        m_entries.push_back(entry);
        if (call.IsObserved())
        {
            Leaks::Opened("COM initialisation", entry, call.Function());
        }
        return isFirst ? S_OK : S_FALSE;
    }

    // Once too often does nothing.
    void Leave()
    {
        if (m_entries.empty())
        {
            return;
        }
        Leaks::Closed("COM initialisation", m_entries.back());
        m_entries.pop_back();
        if (m_entries.empty() && m_isMultithreaded)
        {
            --multithreadedThreads;
        }
    }

private:
    std::vector<const void*> m_entries; ///< one for each initialisation, newest last
    bool m_isMultithreaded = false;
};

Membership& OfThisThread()
{
    static thread_local Membership membership;
    return membership;
}

HRESULT Initialize(const void* reserved, DWORD flags, const PlatformCall& call)
{
    if (reserved != nullptr || (flags & ~DWORD{COINIT_APARTMENTTHREADED}) != 0)
    {
        return E_INVALIDARG;
    }
    return OfThisThread().Enter((flags & COINIT_APARTMENTTHREADED) == 0, call);
}

} // namespace

bool IsInApartment()
{
    return OfThisThread().IsMember() || multithreadedThreads > 0;
}

} // namespace simulated

using namespace simulated;

SIM_API HRESULT WINAPI CoInitializeEx(LPVOID reserved, DWORD apartment)
{
    PlatformCall call(CallClass::Com, "CoInitializeEx", SIM_CALLER);
    call.Arguments(reserved, apartment);
    return call.Com([&] { return Initialize(reserved, apartment, call); });
}

SIM_API void WINAPI CoUninitialize()
{
    PlatformCall call(CallClass::Com, "CoUninitialize", SIM_CALLER);
    OfThisThread().Leave();
    call.AnswerNothing();
}
