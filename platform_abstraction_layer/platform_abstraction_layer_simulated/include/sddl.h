// sddl.h
//
// advapi32: security identifiers as text.
#pragma once

#include <windows.h>
