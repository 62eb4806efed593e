// modules/advapi32/SecurityDescriptors.cpp
//
// Security descriptors as records. Nothing on the machine looks at them: everybody may do everything.

#include "base/PlatformCall.h"

#include <cstring>
#include <windows.h>

namespace simulated
{

namespace
{

DWORD Initialize(PSECURITY_DESCRIPTOR descriptor, DWORD revision)
{
    if (revision != SECURITY_DESCRIPTOR_REVISION)
    {
        return ERROR_UNKNOWN_REVISION;
    }
    SECURITY_DESCRIPTOR fresh{};
    fresh.Revision = SECURITY_DESCRIPTOR_REVISION;
    std::memcpy(descriptor, &fresh, sizeof fresh);
    return ERROR_SUCCESS;
}

DWORD SetDacl(PSECURITY_DESCRIPTOR target, bool isPresent, PACL dacl, bool isDefaulted)
{
    SECURITY_DESCRIPTOR descriptor{};
    std::memcpy(&descriptor, target, sizeof descriptor);
    if (descriptor.Revision != SECURITY_DESCRIPTOR_REVISION)
    {
        return ERROR_UNKNOWN_REVISION;
    }
    unsigned control = descriptor.Control & ~static_cast<unsigned>(SE_DACL_PRESENT | SE_DACL_DEFAULTED);
    if (isPresent)
    {
        control |= SE_DACL_PRESENT | (isDefaulted ? SE_DACL_DEFAULTED : 0U);
        descriptor.Dacl = dacl;
    }
    descriptor.Control = static_cast<SECURITY_DESCRIPTOR_CONTROL>(control);
    std::memcpy(target, &descriptor, sizeof descriptor);
    return ERROR_SUCCESS;
}

} // namespace

} // namespace simulated

using namespace simulated;

SIM_API BOOL WINAPI InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision)
{
    PlatformCall call(CallClass::Account, "InitializeSecurityDescriptor", SIM_CALLER);
    call.Arguments(revision);
    return call.Boolean(
        [&]() -> DWORD { return descriptor == nullptr ? ERROR_NOACCESS : Initialize(descriptor, revision); });
}

SIM_API BOOL WINAPI SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL dacl,
                                              BOOL defaulted)
{
    PlatformCall call(CallClass::Account, "SetSecurityDescriptorDacl", SIM_CALLER);
    call.Arguments(present, dacl);
    return call.Boolean(
        [&]() -> DWORD
        {
            return descriptor == nullptr ? ERROR_NOACCESS
                                         : SetDacl(descriptor, present != FALSE, dacl, defaulted != FALSE);
        });
}
