// include/dwmapi.h
//
// dwmapi: desktop composition. The module exists from major version 6 on, so programs bind it at run time.
#pragma once

#include <windows.h>

#define DWM_EC_DISABLECOMPOSITION 0
#define DWM_EC_ENABLECOMPOSITION 1

SIM_API HRESULT WINAPI DwmEnableComposition(UINT action);
SIM_API HRESULT WINAPI DwmIsCompositionEnabled(BOOL* enabled);
