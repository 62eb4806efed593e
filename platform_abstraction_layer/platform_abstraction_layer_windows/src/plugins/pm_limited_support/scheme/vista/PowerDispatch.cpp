// scheme/vista/PowerDispatch.cpp
//
// The process's table of the GUID-based power functions.

#include "scheme/vista/PowerDispatch.h"

constinit PowerFunctions PowerDispatch{};

namespace
{

struct Binding
{
    LPCSTR name;
    BoundFunction& entry;
};

constexpr Binding kBindings[] = {
    {"PowerGetActiveScheme", PowerDispatch.PowerGetActiveScheme},
    {"PowerSetActiveScheme", PowerDispatch.PowerSetActiveScheme},
    {"PowerReadFriendlyName", PowerDispatch.PowerReadFriendlyName},
    {"PowerReadACValueIndex", PowerDispatch.PowerReadACValueIndex},
    {"PowerReadDCValueIndex", PowerDispatch.PowerReadDCValueIndex},
    {"PowerWriteACValueIndex", PowerDispatch.PowerWriteACValueIndex},
    {"PowerWriteDCValueIndex", PowerDispatch.PowerWriteDCValueIndex},
    {"PowerDeleteScheme", PowerDispatch.PowerDeleteScheme},
};

} // namespace

void BindPowerFunctions(HMODULE library) noexcept
{
    for (const Binding& binding : kBindings)
    {
        binding.entry.address = GetProcAddress(library, binding.name);
    }
}
