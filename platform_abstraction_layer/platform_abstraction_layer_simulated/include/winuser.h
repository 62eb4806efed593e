// winuser.h
//
// user32: the few window functions that a device list needs.
#pragma once

#include <winnt.h>
