// scheme/Variables.cpp
//
// Reading and writing one variable.

#include "scheme/Variables.h"

#include "foundation/Log.h"
#include "foundation/OrvlBase.h"

namespace
{

bool CanRead(const PowerBackend& backend, int index) noexcept
{
    return Check(backend.exists(index), L"FindPwrScheme failed %d\n");
}

bool CanWrite(const PowerBackend& backend, int index) noexcept
{
    return Check(backend.exists(index), L"FindPwrScheme error");
}

int RefuseUnknown(const wchar_t* format, const wchar_t* name) noexcept
{
    if (format != nullptr)
    {
        CORVLBase::DBGOUT(format, name);
    }
    return -1;
}

} // namespace

int variables::Read(const PowerBackend& backend, int index, bool ac, const Variable& variable) noexcept
{
    return CanRead(backend, index) ? backend.read(index, ac, variable) : -1;
}

int variables::Write(const PowerBackend& backend, int index, bool ac, const NamedVariable& variable,
                     int value) noexcept
{
    return CanWrite(backend, index) ? backend.write(index, ac, variable, value) : -1;
}

int variables::Read(const PowerBackend& backend, int index, bool ac, const wchar_t* name) noexcept
{
    if (const Variable* const variable = FindVariable(name))
    {
        return Read(backend, index, ac, *variable);
    }
    return CanRead(backend, index) ? RefuseUnknown(backend.unknownRead, name) : -1;
}

int variables::Write(const PowerBackend& backend, int index, bool ac, const wchar_t* name, int value) noexcept
{
    if (const Variable* const variable = FindVariable(name))
    {
        return Write(backend, index, ac, NamedVariable(*variable, name), value);
    }
    return CanWrite(backend, index) ? RefuseUnknown(backend.unknownWrite, name) : -1;
}
