// foundation/PowerProfile.h
//
// The power manager's header, once. Some toolchains ship it without a guard of its own.
#pragma once

#include <windows.h>

// A macro of that header tells whether a program has included it before.
#ifndef EnableSysTrayBatteryMeter
#include <powrprof.h>
#endif
