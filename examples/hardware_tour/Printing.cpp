// hardware_tour/Printing.cpp
//
// Converts by Windows functions: wide text is UTF-16 in the native build too, but not in the native C
// library.

#include "Printing.h"

#include <cstdio>

std::string Narrow(const wchar_t* wide)
{
    const int size = WideCharToMultiByte(CP_ACP, 0, wide, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 0)
    {
        return {};
    }
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_ACP, 0, wide, -1, narrow.data(), size, nullptr, nullptr);
    narrow.pop_back();
    return narrow;
}

bool Widen(const char* narrow, wchar_t* wide, int capacity)
{
    return MultiByteToWideChar(CP_ACP, 0, narrow, -1, wide, capacity) > 0;
}

bool Report(const std::string& what, LONG result)
{
    std::printf("  %-44s ", what.c_str());
    if (result < 0)
    {
        std::printf("failed with 0x%08lX\n", static_cast<unsigned long>(static_cast<ULONG>(result)));
        return false;
    }
    std::printf("done\n");
    return true;
}
