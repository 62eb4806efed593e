// include/windows.h
//
// The part of Windows that the plug-in, its host and its service use, declared with the documented names,
// values and layouts. Functions stand in the header of the area that Windows documents them in. C gets the
// basic types alone, which are what the plug-in's interface is made of.
#pragma once

#include <windef.h>

#ifdef __cplusplus

#include <winerror.h>
#include <winnt.h>

#include <winbase.h>
#include <winpower.h>
#include <winreg.h>
#include <winsecurity.h>
#include <winuser.h>
#include <winversion.h>

#include <runtime.h>

#endif
