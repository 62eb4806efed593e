// include/runtime.h
//
// The parts of the Microsoft C runtime that differ from the native one.
#pragma once

#include <winnt.h>

#include <cstdarg>
#include <cstdio>

/// Opens a file of the simulated machine. The modes are "ab", "rb" and "wb".
SIM_API FILE* _wfopen(const wchar_t* path, const wchar_t* mode);

/// Formats with the rules of the Microsoft runtime: "%s" is wide text and "%S" narrow, "l" is 32 bits. The
/// characters written, without the terminator; -1, with `count` characters and no terminator, when the text
/// doesn't fit; a text of exactly `count` characters has no terminator either.
SIM_API int _vsnwprintf(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments);
