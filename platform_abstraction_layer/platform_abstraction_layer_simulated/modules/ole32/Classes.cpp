// modules/ole32/Classes.cpp
//
// Finding a class by its name and making an object of it. Known difference: which classes are installed is
// the machine's word, not that of HKEY_CLASSES_ROOT.

#include "base/GuidText.h"
#include "base/Text.h"
#include "modules/ole32/Apartments.h"
#include "modules/ole32/ClassTable.h"

#include <objbase.h>

#include <vector>

namespace simulated
{

namespace
{

// Filled before any library that stands on this one is loaded, then only read.
std::vector<const com::Class*>& Table()
{
    static std::vector<const com::Class*>& table = *new std::vector<const com::Class*>;
    return table;
}

template <class Condition>
const com::Class* FindInstalled(Condition isWanted)
{
    for (const com::Class* row : Table())
    {
        if (isWanted(*row) && row->isInstalled())
        {
            return row;
        }
    }
    return nullptr;
}

HRESULT FindByName(LPCOLESTR name, LPCLSID classId)
{
    if (name == nullptr || classId == nullptr)
    {
        return E_INVALIDARG;
    }
    const std::string wanted = ToUtf8(name);
    const com::Class* const row = FindInstalled([&](const com::Class& candidate)
                                                { return EqualIgnoringCase(candidate.progId, wanted); });
    *classId = row == nullptr ? CLSID{} : row->classId;
    return row == nullptr ? CO_E_CLASSSTRING : S_OK;
}

HRESULT Create(REFCLSID classId, const IUnknown* outer, DWORD context, REFIID interfaceId, void** object,
               const PlatformCall& call)
{
    if (object == nullptr)
    {
        return E_POINTER;
    }
    *object = nullptr;
    if (!IsInApartment())
    {
        return CO_E_NOTINITIALIZED;
    }
    if (outer != nullptr)
    {
        return CLASS_E_NOAGGREGATION;
    }
    const com::Class* const row =
        FindInstalled([&](const com::Class& candidate) { return IsSame(candidate.classId, classId); });
    // All classes here live in a DLL.
    if (row == nullptr || (context & CLSCTX_INPROC_SERVER) == 0)
    {
        return REGDB_E_CLASSNOTREG;
    }
    return row->create(interfaceId, object, call);
}

} // namespace

void com::Register(const Class& row)
{
    Table().push_back(&row);
}

} // namespace simulated

using namespace simulated;

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
