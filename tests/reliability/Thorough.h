// tests/reliability/Thorough.h
//
// How much the reliability tests do: a sample, or everything where RELIABILITY says "thorough".
#pragma once

#include <cstdlib>
#include <string_view>

inline bool IsThorough()
{
    const char* const wanted = std::getenv("RELIABILITY");
    return wanted != nullptr && std::string_view(wanted) == "thorough";
}
