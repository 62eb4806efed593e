// tests/reliability/Thorough.h
//
// How much the reliability tests do: a sample, or everything where RELIABILITY says "thorough"; and the
// figures that they print.
#pragma once

#include <cstdlib>
#include <iostream>
#include <string_view>

inline bool IsThorough()
{
    const char* const wanted = std::getenv("RELIABILITY");
    return wanted != nullptr && std::string_view(wanted) == "thorough";
}

/// Prints a line that a script picks out.
template <class... Parts>
void PrintFigure(const Parts&... parts)
{
    ((std::cout << "figure: ") << ... << parts) << std::endl;
}
