// modules/drivers/PanelBridge.cpp
//
// The COM object that the graphics driver installs, with its power interface of 25 slots. Callers know the
// methods by slot alone, so the table of slots is laid out by hand. A caller that ignores reference counts
// meets freed memory, as with any COM object.

#include "modules/drivers/PanelBridge.h"

#include "base/GuidText.h"
#include "base/Trace.h"
#include "machine/Graphics.h"

#include <objbase.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <mutex>
#include <set>

namespace simulated
{

namespace
{

constexpr IID kInterfaceId = {0xAFB6489F, 0x4515, 0x44AA, {0x8D, 0xF7, 0xED, 0x28, 0xEA, 0x46, 0x28, 0x3C}};
constexpr HRESULT kInvalidHandle = HRESULT_FROM_WIN32(ERROR_INVALID_HANDLE);

struct Policy
{
    const char* name;
    ULONG number;
    GUID id;
    ULONG recordSize;
};

constexpr Policy kPolicies[] = {
    {"FRQG", 1, {0x8A2A926D, 0xFF9D, 0x4737, {0x93, 0x5B, 0x96, 0xBF, 0x28, 0x80, 0x5B, 0x73}}, 4},
    {"LUMS", 2, {0x6D24D96F, 0x019C, 0x4BAA, {0xAC, 0xD5, 0xD4, 0x8B, 0x78, 0x05, 0x03, 0x25}}, 20},
    {"ABR", 3, {0x2B3C5F6C, 0x97B7, 0x4C85, {0xB4, 0xF2, 0x33, 0x57, 0x19, 0xD2, 0x4F, 0x3D}}, 20},
};

struct Bridge;

constexpr std::size_t kUnusedSlots = 17;

struct Slots
{
    HRESULT(STDMETHODCALLTYPE* queryInterface)(Bridge*, REFIID, void**);
    ULONG(STDMETHODCALLTYPE* addRef)(Bridge*);
    ULONG(STDMETHODCALLTYPE* release)(Bridge*);
    HRESULT(STDMETHODCALLTYPE* unused[kUnusedSlots])(Bridge*);
    HRESULT(STDMETHODCALLTYPE* open)(Bridge*, ULONG*, ULONG*);
    HRESULT(STDMETHODCALLTYPE* close)(Bridge*, ULONG, ULONG*);
    HRESULT(STDMETHODCALLTYPE* getCapabilities)(Bridge*, ULONG, ULONG*, ULONG*);
    HRESULT(STDMETHODCALLTYPE* getPolicy)(Bridge*, ULONG, ULONG, GUID*, ULONG, void*, ULONG*);
    HRESULT(STDMETHODCALLTYPE* setPolicy)(Bridge*, ULONG, ULONG, GUID*, ULONG, void*, ULONG*);
};
static_assert(sizeof(Slots) == 25 * sizeof(void*) && offsetof(Slots, open) == 20 * sizeof(void*));

struct Bridge
{
    const Slots* slots; ///< first, where COM looks for it
    std::atomic<ULONG> references;
};

// Power handles are the driver's, whichever object opened them.
struct PowerHandles
{
    std::mutex mutex;
    std::set<ULONG> open;
    ULONG next = 0x101;
};

PowerHandles& TheHandles()
{
    static PowerHandles& handles = *new PowerHandles;
    return handles;
}

std::atomic<unsigned> liveObjects{0};

const void* LeakName(ULONG handle)
{
    return reinterpret_cast<const void*>(static_cast<std::uintptr_t>(handle));
}

bool IsOpen(ULONG handle)
{
    PowerHandles& handles = TheHandles();
    const std::lock_guard lock(handles.mutex);
    return handles.open.contains(handle);
}

// Runs a method unless the graphics driver is set to refuse it.
template <class Work>
HRESULT RunUnlessRefused(const std::string& method, ULONG* driverError, Work work)
{
    if (driverError == nullptr)
    {
        return E_POINTER;
    }
    const Graphics::Refusal refusal = Graphics::RefusalOf(method);
    *driverError = refusal.driverError;
    return refusal.IsNone() ? work() : refusal.result;
}

HRESULT OpenHandle(ULONG* handle, const PlatformCall& call)
{
    if (handle == nullptr)
    {
        return E_POINTER;
    }
    PowerHandles& handles = TheHandles();
    const std::lock_guard lock(handles.mutex);
    *handle = handles.next++;
    handles.open.insert(*handle);
    if (call.IsObserved())
    {
        Leaks::Opened("power handle", LeakName(*handle), call.Function());
    }
    return S_OK;
}

HRESULT CloseHandle(ULONG handle)
{
    PowerHandles& handles = TheHandles();
    const std::lock_guard lock(handles.mutex);
    if (handles.open.erase(handle) == 0)
    {
        return kInvalidHandle;
    }
    Leaks::Closed("power handle", LeakName(handle));
    return S_OK;
}

// Accesses to the record of a policy that the driver supports; `words` are what it holds, as many as the
// policy has.

void ReadRecord(const Policy&, void* record, std::vector<DWORD>& words)
{
    std::memcpy(record, words.data(), words.size() * sizeof(DWORD));
}

void WriteRecord(const Policy& policy, void* record, std::vector<DWORD>& words)
{
    std::memcpy(words.data(), record, words.size() * sizeof(DWORD));
    Graphics::SetPolicy(policy.name, words);
}

// Reads or writes the record of a policy.
struct PolicyCall
{
    const char* method;
    ULONG handle;
    ULONG number;
    const GUID* id;
    ULONG size;
    void* record;
    ULONG* driverError;
    void (*access)(const Policy& policy, void* record, std::vector<DWORD>& words);

    HRESULT Run() const
    {
        return RunUnlessRefused(method, driverError, [&] { return RunAllowed(); });
    }

private:
    HRESULT RunAllowed() const
    {
        if (!IsOpen(handle))
        {
            return kInvalidHandle;
        }
        if (id == nullptr || record == nullptr)
        {
            return E_POINTER;
        }
        const auto* const policy =
            std::find_if(std::begin(kPolicies), std::end(kPolicies),
                         [&](const Policy& row) { return row.number == number && IsSame(row.id, *id); });
        if (policy == std::end(kPolicies))
        {
            *driverError = Graphics::kPolicyNotSupported;
            return S_OK;
        }
        return size == policy->recordSize ? RunUnlessRefused(std::string(method) + '.' + policy->name,
                                                             driverError, [&] { return Access(*policy); })
                                          : E_INVALIDARG;
    }

    HRESULT Access(const Policy& policy) const
    {
        std::optional<std::vector<DWORD>> words = Graphics::Policy(policy.name);
        if (!words)
        {
            *driverError = Graphics::kPolicyNotSupported;
            return S_OK;
        }
        words->resize(policy.recordSize / sizeof(DWORD));
        access(policy, record, *words);
        return S_OK;
    }
};

ULONG AddReference(Bridge* self)
{
    return ++self->references;
}

ULONG ReleaseReference(Bridge* self)
{
    const ULONG left = --self->references;
    if (left == 0)
    {
        Leaks::Closed("COM object", self);
        --liveObjects;
        delete self;
    }
    return left;
}

HRESULT Query(Bridge* self, REFIID interfaceId, void** object)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (!IsSame(interfaceId, kInterfaceId) && !IsSame(interfaceId, IID_IUnknown))
    {
        return E_NOINTERFACE;
    }
    AddReference(self);
    *object = self;
    return S_OK;
}

// The slots themselves.

HRESULT STDMETHODCALLTYPE QueryInterfaceSlot(Bridge* self, REFIID interfaceId, void** object)
{
    PlatformCall call(CallClass::Com, "QueryInterface", SIM_CALLER);
    call.Arguments(interfaceId);
    return call.Com([&] { return Query(self, interfaceId, object); });
}

ULONG STDMETHODCALLTYPE AddRefSlot(Bridge* self)
{
    PlatformCall call(CallClass::Com, "AddRef", SIM_CALLER);
    return call.Answer(AddReference(self));
}

ULONG STDMETHODCALLTYPE ReleaseSlot(Bridge* self)
{
    PlatformCall call(CallClass::Com, "Release", SIM_CALLER);
    return call.Answer(ReleaseReference(self));
}

HRESULT STDMETHODCALLTYPE UnusedSlot(Bridge*)
{
    PlatformCall call(CallClass::Com, "PanelBridge", SIM_CALLER);
    return call.Com([] { return E_NOTIMPL; });
}

HRESULT STDMETHODCALLTYPE OpenSlot(Bridge*, ULONG* handle, ULONG* driverError)
{
    PlatformCall call(CallClass::Com, "PowerApiOpen", SIM_CALLER);
    return call.Com(
        [&]
        { return RunUnlessRefused("PowerApiOpen", driverError, [&] { return OpenHandle(handle, call); }); });
}

HRESULT STDMETHODCALLTYPE CloseSlot(Bridge*, ULONG handle, ULONG* driverError)
{
    PlatformCall call(CallClass::Com, "PowerApiClose", SIM_CALLER);
    call.Arguments(handle);
    return call.Com(
        [&] { return RunUnlessRefused("PowerApiClose", driverError, [&] { return CloseHandle(handle); }); });
}

HRESULT ReadCapabilities(ULONG handle, ULONG* capabilities)
{
    if (capabilities == nullptr)
    {
        return E_POINTER;
    }
    if (!IsOpen(handle))
    {
        return kInvalidHandle;
    }
    *capabilities = Graphics::Capabilities();
    return S_OK;
}

HRESULT STDMETHODCALLTYPE CapabilitiesSlot(Bridge*, ULONG handle, ULONG* capabilities, ULONG* driverError)
{
    PlatformCall call(CallClass::Com, "GetPowerConsCaps", SIM_CALLER);
    call.Arguments(handle);
    return call.Com(
        [&]
        {
            return RunUnlessRefused("GetPowerConsCaps", driverError,
                                    [&] { return ReadCapabilities(handle, capabilities); });
        });
}

HRESULT STDMETHODCALLTYPE GetPolicySlot(Bridge*, ULONG handle, ULONG number, GUID* id, ULONG size,
                                        void* record, ULONG* driverError)
{
    PlatformCall call(CallClass::Com, "GetPowerPolicy", SIM_CALLER);
    call.Arguments(handle, number, size);
    const PolicyCall policyCall = {"GetPowerPolicy", handle,      number,     id, size,
                                   record,           driverError, &ReadRecord};
    return call.Com([&] { return policyCall.Run(); });
}

HRESULT STDMETHODCALLTYPE SetPolicySlot(Bridge*, ULONG handle, ULONG number, GUID* id, ULONG size,
                                        void* record, ULONG* driverError)
{
    PlatformCall call(CallClass::Com, "SetPowerPolicy", SIM_CALLER);
    call.Arguments(handle, number, size);
    const PolicyCall policyCall = {"SetPowerPolicy", handle,      number,      id, size,
                                   record,           driverError, &WriteRecord};
    return call.Com([&] { return policyCall.Run(); });
}

const Slots& TheSlots()
{
    static const Slots slots = []
    {
        Slots filled = {&QueryInterfaceSlot, &AddRefSlot,    &ReleaseSlot,  {}, &OpenSlot, &CloseSlot,
                        &CapabilitiesSlot,   &GetPolicySlot, &SetPolicySlot};
        std::fill(std::begin(filled.unused), std::end(filled.unused), &UnusedSlot);
        return filled;
    }();
    return slots;
}

} // namespace

HRESULT panel_bridge::Create(REFIID interfaceId, void** object, const PlatformCall& call)
{
    auto* const bridge = new Bridge{&TheSlots(), {0}};
    ++liveObjects;
    const HRESULT result = Query(bridge, interfaceId, object);
    if (FAILED(result))
    {
        --liveObjects;
        delete bridge;
        return result;
    }
    if (call.IsObserved())
    {
        Leaks::Opened("COM object", bridge, call.Function());
    }
    return S_OK;
}

unsigned Graphics::LiveObjects()
{
    return liveObjects;
}

} // namespace simulated
