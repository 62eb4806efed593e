// scheme/vista/PowerDispatch.cpp
//
// The process's table of the GUID-based power functions.

#include "scheme/vista/PowerDispatch.h"

#include "foundation/Modules.h"

constinit PowerFunctions PowerDispatch{};

namespace
{

// Stores a looked-up function in one entry of the table.
template <auto Entry>
void StoreFunction(FARPROC function) noexcept
{
    auto& entry = PowerDispatch.*Entry;
    entry.store(FunctionCast<decltype(entry.load())>(function));
}

struct Binding
{
    LPCSTR name;
    void (*store)(FARPROC function) noexcept;
};

constexpr Binding kBindings[] = {
    {"PowerGetActiveScheme", StoreFunction<&PowerFunctions::PowerGetActiveScheme>},
    {"PowerSetActiveScheme", StoreFunction<&PowerFunctions::PowerSetActiveScheme>},
    {"PowerReadFriendlyName", StoreFunction<&PowerFunctions::PowerReadFriendlyName>},
    {"PowerReadACValueIndex", StoreFunction<&PowerFunctions::PowerReadACValueIndex>},
    {"PowerReadDCValueIndex", StoreFunction<&PowerFunctions::PowerReadDCValueIndex>},
    {"PowerWriteACValueIndex", StoreFunction<&PowerFunctions::PowerWriteACValueIndex>},
    {"PowerWriteDCValueIndex", StoreFunction<&PowerFunctions::PowerWriteDCValueIndex>},
    {"PowerDeleteScheme", StoreFunction<&PowerFunctions::PowerDeleteScheme>},
};

} // namespace

void BindPowerFunctions(HMODULE library) noexcept
{
    for (const Binding& binding : kBindings)
    {
        binding.store(GetProcAddress(library, binding.name));
    }
}
