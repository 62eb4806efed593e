// dwmapi.h
//
// dwmapi: desktop composition.
#pragma once

#include <windows.h>
