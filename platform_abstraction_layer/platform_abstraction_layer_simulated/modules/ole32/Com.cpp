// modules/ole32/Com.cpp
//
// Which threads have initialised COM, for which kind of apartment and how often; finding a class by its name
// and making an object of it. Known difference: there is one class, and whether it is installed is the
// a setting of the machine, not of HKEY_CLASSES_ROOT.

#include "base/GuidText.h"
#include "base/Text.h"
#include "base/Trace.h"
#include "machine/Graphics.h"
#include "modules/drivers/PanelBridge.h"

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

    // An unbalanced call does nothing.
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

HRESULT FindByName(LPCOLESTR name, LPCLSID classId)
{
    if (name == nullptr || classId == nullptr)
    {
        return E_INVALIDARG;
    }
    const bool isKnown = Graphics::IsInstalled() && EqualIgnoringCase(ToUtf8(name), panel_bridge::kProgId);
    *classId = isKnown ? panel_bridge::kClassId : CLSID{};
    return isKnown ? S_OK : CO_E_CLASSSTRING;
}

HRESULT Create(REFCLSID classId, const IUnknown* outer, DWORD context, REFIID interfaceId, void** object,
               const PlatformCall& call)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    // Another thread of the process may keep the multithreaded apartment alive.
    if (!OfThisThread().IsMember() && multithreadedThreads == 0)
    {
        return CO_E_NOTINITIALIZED;
    }
    if (outer != nullptr)
    {
        return CLASS_E_NOAGGREGATION;
    }
    // The class lives in a DLL.
    if (!Graphics::IsInstalled() || !IsSame(classId, panel_bridge::kClassId) ||
        (context & CLSCTX_INPROC_SERVER) == 0)
    {
        return REGDB_E_CLASSNOTREG;
    }
    return panel_bridge::Create(interfaceId, object, call);
}

} // namespace

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

SIM_API HRESULT WINAPI CLSIDFromProgID(LPCOLESTR progId, LPCLSID classId)
{
    PlatformCall call(CallClass::Com, "CLSIDFromProgID", SIM_CALLER);
    call.Arguments(progId);
    return call.Com([&] { return FindByName(progId, classId); });
}

SIM_API HRESULT WINAPI CoCreateInstance(REFCLSID classId, LPUNKNOWN outer, DWORD context, REFIID interfaceId,
                                        LPVOID* object)
{
    PlatformCall call(CallClass::Com, "CoCreateInstance", SIM_CALLER);
    call.Arguments(classId, context, interfaceId);
    return call.Com([&] { return Create(classId, outer, context, interfaceId, object, call); });
}
