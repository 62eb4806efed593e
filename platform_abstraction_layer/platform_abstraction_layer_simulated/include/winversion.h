// winversion.h
//
// kernel32: the version of the operating system.
#pragma once

#include <winnt.h>
