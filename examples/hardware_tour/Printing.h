// hardware_tour/Printing.h
//
// Converts text between the classes, which use wide text, and the console, which doesn't.
#pragma once

#include <windows.h>

#include <string>

/// Wide text in the ANSI code page.
std::string Narrow(const wchar_t* wide);

/// A command line argument as wide text, in `capacity` characters; false when it is too long.
bool Widen(const char* narrow, wchar_t* wide, int capacity);

/// Prints `what` and whether its result code means success; true when it does.
bool Report(const std::string& what, LONG result);
