// modules/ole32/ClassTable.h
//
// The classes that objects can be made of. Whoever plays one registers it with an object at namespace scope,
// as modules do (kernel32/Modules.h).
#pragma once

#include "base/PlatformCall.h"

namespace simulated::com
{

struct Class
{
    const char* progId;
    CLSID classId;
    bool (*isInstalled)();

    /// Makes an object and hands out the interface asked for, with one reference.
    HRESULT (*create)(REFIID interfaceId, void** object, const PlatformCall& call);
};

/// `row` must live as long as the process.
void Register(const Class& row);

struct Registration
{
    explicit Registration(const Class& row)
    {
        Register(row);
    }
};

} // namespace simulated::com
