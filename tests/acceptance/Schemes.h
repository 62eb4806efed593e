// tests/acceptance/Schemes.h
//
// The scheme commands' records, as tests write them down.
#pragma once

#include "plugin/WireRecords.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace schemes
{

template <std::size_t N>
void SetText(char (&field)[N], const std::string& text)
{
    std::memcpy(field, text.data(), std::min(text.size(), N));
}

inline PM_Variable_Data Variable(LONG scheme, LONG ifAC, const std::string& name, LONG value = 0)
{
    PM_Variable_Data data{};
    data.schemeID = scheme;
    data.ifAC = ifAC;
    SetText(data.valName, name);
    data.val = value;
    return data;
}

inline PM_Power_Scheme_Data Identity(const std::string& name, const std::string& description, LONG from)
{
    PM_Power_Scheme_Data data{};
    SetText(data.name, name);
    SetText(data.desc, description);
    data.schemeID = from;
    return data;
}

/// A whole scheme with values that the catalogue of the reference installation offers.
inline PM_Power_Scheme_Data_ALL Whole(const std::string& name, LONG scheme)
{
    PM_Power_Scheme_Data_ALL data{};
    SetText(data.name, name);
    SetText(data.desc, "about " + name);
    data.schemeID = scheme;
    data.ac = {100, 7, 1, 0, 900, 1800, 1, 0, 1};
    data.dc = {50, 3, 2, 0, 300, 600, 0, 1, 0};
    data.IfDefault = 1;
    data.IconNum = 5;
    data.IfShow = 1;
    return data;
}

} // namespace schemes
