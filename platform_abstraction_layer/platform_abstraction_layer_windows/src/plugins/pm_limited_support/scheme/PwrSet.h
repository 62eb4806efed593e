// scheme/PwrSet.h
//
// A whole scheme in memory, as one piece that callers fill, read and hand over.
#pragma once

#include <windows.h>

#include <cstddef>

/// Room of a scheme's name and of its description, in characters with the terminator.
constexpr std::size_t kSchemeTextCapacity = 256;

/// The values of a scheme on one power source. In a record that was read, -1 stands for a variable that has
/// no value or couldn't be read.
struct PWRVALUES
{
    LONG cpuSpeed;          ///< offset 0: percent of full speed, 0 for adaptive
    LONG backlightLevel;    ///< offset 4
    LONG lanSpeed;          ///< offset 8
    LONG lums;              ///< offset 12: one value for both sources, kept in `PWRSET::ac`; unused in `dc`
    LONG monitorOffTimeOut; ///< offset 16: seconds, 0 for never
    LONG standbyTimeOut;    ///< offset 20: seconds, 0 for never
    LONG wifi;              ///< offset 24
    LONG threeG;            ///< offset 28
    LONG lanStatus;         ///< offset 32
};
static_assert(sizeof(PWRVALUES) == 36);
static_assert(offsetof(PWRVALUES, lums) == 12 && offsetof(PWRVALUES, wifi) == 24);
static_assert(offsetof(PWRVALUES, lanStatus) == 32);

struct PWRSET
{
    LONG schemeID;                     ///< offset 0: the scheme index
    wchar_t name[kSchemeTextCapacity]; ///< offset 4: read only when a scheme is added
    wchar_t desc[kSchemeTextCapacity]; ///< offset 516: read only when a scheme is added
    PWRVALUES ac;                      ///< offset 1028: on AC power
    PWRVALUES dc;                      ///< offset 1064: on battery power
    LONG IfDefault;                    ///< offset 1100: how the companion application shows the scheme
    LONG IconNum;                      ///< offset 1104: likewise
    LONG IfShow;                       ///< offset 1108: likewise
};
static_assert(sizeof(PWRSET) == 1112);
static_assert(offsetof(PWRSET, desc) == 516 && offsetof(PWRSET, ac) == 1028);
static_assert(offsetof(PWRSET, dc) == 1064 && offsetof(PWRSET, IfDefault) == 1100);
