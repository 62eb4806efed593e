// modules/kernel32/SystemVersion.h
//
// The version of the operating system: machine.ini, section "Machine", keys "Major", "Minor", "Build" and
// "ServicePack". Without them the machine runs Windows XP SP3.
#pragma once

#include <windef.h>

namespace simulated
{

struct SystemVersion
{
    DWORD major;
    DWORD minor;
    DWORD build;
    DWORD servicePack;
};

SystemVersion ReadSystemVersion();

} // namespace simulated
