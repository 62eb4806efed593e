// foundation/PmLog.h
//
// The log of the plug-in level functions: the exports, the handlers and the notification thread.
#pragma once

#include <windows.h>

/// Writes one line, cut at 255 characters, to "C:/temp1234567890/trxpm.log". Where that folder doesn't
/// exist the line is lost; nothing creates it.
void PmLog(const wchar_t* format, ...) noexcept;
