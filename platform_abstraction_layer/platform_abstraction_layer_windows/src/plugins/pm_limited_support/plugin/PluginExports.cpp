// plugin/PluginExports.cpp
//
// The exported functions, which reach the one context and do nothing themselves.

#include "plugin/PluginExports.h"

#include "plugin/PluginHelper.h"

const char* __cdecl DP_GetModuleId() noexcept
{
    return kModuleId;
}

const char* __cdecl DP_GetDescription() noexcept
{
    return "Kelvo Power Management Library";
}

LONG __cdecl DP_Initialize(PM_HostInterface* host) noexcept
{
    return CPluginHelper::Instance().Initialize(host);
}

LONG __cdecl DP_Uninitialize() noexcept
{
    return CPluginHelper::Instance().Uninitialize();
}

LONG __cdecl DP_HandleRequest(PM_Request* request) noexcept
{
    return CPluginHelper::Instance().HandleRequest(request);
}
