// runtime.h
//
// The parts of the Microsoft C runtime that differ from the native one.
#pragma once

#include <winnt.h>

#include <cstdarg>
#include <cstdio>

/// Opens a file of the simulated machine. Modes are those of `fopen`; a text mode writes and reads the bytes
/// as they are, without turning line ends, so callers open binary.
SIM_API FILE* _wfopen(const wchar_t* path, const wchar_t* mode);

/// Formats with the rules of the Microsoft runtime: in a wide format "%s" is wide text and "%S" narrow, in a
/// narrow one the other way round; "l" is 32 bits. The characters written, without the terminator; -1, with
/// `count` characters and no terminator, when the text doesn't fit; a text of exactly `count` characters has
/// no terminator either.
SIM_API int _vsnwprintf(wchar_t* target, std::size_t count, const wchar_t* format, va_list arguments);
SIM_API int _vsnprintf(char* target, std::size_t count, const char* format, va_list arguments);
SIM_API int _snwprintf(wchar_t* target, std::size_t count, const wchar_t* format, ...);
