// setupapi.h
//
// setupapi: the device installer.
#pragma once

#include <windows.h>
