// shlwapi.h
//
// shlwapi: paths and text.
#pragma once

#include <windows.h>
