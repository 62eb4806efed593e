// cfgmgr32.h
//
// setupapi: the configuration manager.
#pragma once

#include <windows.h>
