// plugin/SchemeConversion.cpp
//
// The conversions of a whole scheme.

#include "plugin/SchemeConversion.h"

#include "foundation/Log.h"
#include "foundation/Text.h"

#include <cstddef>
#include <cstring>
#include <iterator>

namespace
{

// Bytes of a text that comes in.
constexpr std::size_t kLongestText = 255;

struct FieldPair
{
    std::size_t wire;
    std::size_t engine;
};

#define ORVL_PAIR(field)                                                                                     \
    {                                                                                                        \
        offsetof(PM_Power_Scheme_Data_ALL, field), offsetof(PWRSET, field)                                   \
    }

// In the order of the wire. On either power source LAN status comes before 3G here and after it in the
// engine.
constexpr FieldPair kNumbers[] = {
    ORVL_PAIR(ac.cpuSpeed),
    ORVL_PAIR(ac.backlightLevel),
    ORVL_PAIR(ac.lanSpeed),
    ORVL_PAIR(ac.lums),
    ORVL_PAIR(ac.monitorOffTimeOut),
    ORVL_PAIR(ac.standbyTimeOut),
    ORVL_PAIR(ac.wifi),
    ORVL_PAIR(ac.lanStatus),
    ORVL_PAIR(ac.threeG),
    ORVL_PAIR(dc.cpuSpeed),
    ORVL_PAIR(dc.backlightLevel),
    ORVL_PAIR(dc.lanSpeed),
    ORVL_PAIR(dc.lums),
    ORVL_PAIR(dc.monitorOffTimeOut),
    ORVL_PAIR(dc.standbyTimeOut),
    ORVL_PAIR(dc.wifi),
    ORVL_PAIR(dc.lanStatus),
    ORVL_PAIR(dc.threeG),
    ORVL_PAIR(IfDefault),
    ORVL_PAIR(IconNum),
    ORVL_PAIR(IfShow),
};

#undef ORVL_PAIR

void CopyNumber(void* target, std::size_t targetOffset, const void* source, std::size_t sourceOffset) noexcept
{
    std::memcpy(static_cast<char*>(target) + targetOffset, static_cast<const char*>(source) + sourceOffset,
                sizeof(LONG));
}

} // namespace

void ConvertSchemeTexts(const void* wire, wchar_t (&name)[256], wchar_t (&description)[256]) noexcept
{
    static_assert(offsetof(PM_Power_Scheme_Data, name) == offsetof(PM_Power_Scheme_Data_ALL, name));
    static_assert(offsetof(PM_Power_Scheme_Data, desc) == offsetof(PM_Power_Scheme_Data_ALL, desc));
    const char* const begin = static_cast<const char*>(wire);
    text::ToWide(begin + offsetof(PM_Power_Scheme_Data, name), kLongestText, name, std::size(name));
    text::ToWide(begin + offsetof(PM_Power_Scheme_Data, desc), kLongestText, description,
                 std::size(description));
}

void ConvertPwrSchemeData(const PM_Power_Scheme_Data_ALL& wire, PWRSET& setting) noexcept
{
    PmLog(L"enter ConvertPwrSchemeData");
    ConvertSchemeTexts(&wire, setting.name, setting.desc);
    setting.schemeID = wire.schemeID;
    for (const FieldPair& pair : kNumbers)
    {
        CopyNumber(&setting, pair.engine, &wire, pair.wire);
    }
    PmLog(L"wifi AC=%d DC=%d", setting.ac.wifi, setting.dc.wifi);
}

void ConvertPwrSet(const PWRSET& setting, PM_Power_Scheme_Data_ALL& wire) noexcept
{
    wire = {};
    wire.schemeID = setting.schemeID;
    for (const FieldPair& pair : kNumbers)
    {
        CopyNumber(&wire, pair.wire, &setting, pair.engine);
    }
    wire.dc.lums = wire.ac.lums;
}
