// powrprof.h
//
// powrprof: the index-based power functions, which are bound at link time.
#pragma once

#include <windows.h>
