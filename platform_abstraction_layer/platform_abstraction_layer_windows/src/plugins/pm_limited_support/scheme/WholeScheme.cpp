// scheme/WholeScheme.cpp
//
// A whole scheme at once: a fixed series of single variables, read or written in the same order.

#include "scheme/Operations.h"

#include "scheme/SchemeFiles.h"
#include "scheme/Variables.h"

namespace
{

struct Step
{
    VariableNumber number;
    bool ac;
};

constexpr Step kSteps[] = {
    {kCpuSpeed, true},
    {kCpuSpeed, false},
    {kStandbyTimeOut, true},
    {kStandbyTimeOut, false},
    {kMonitorOffTimeOut, true},
    {kMonitorOffTimeOut, false},
    {kBacklightLevel, true},
    {kBacklightLevel, false},
    {kLanStatus, true},
    {kLanStatus, false},
    {kLanSpeed, true},
    {kLanSpeed, false},
    {kLums, true},
    {kWifi, true},
    {kWifi, false},
    {kThreeG, true},
    {kThreeG, false},
};

LONG& FieldOf(PWRSET& set, const Step& step) noexcept
{
    PWRVALUES& values = step.ac ? set.ac : set.dc;
    return values.*VariableOf(step.number).member;
}

struct DisplayAttribute
{
    const wchar_t* key;
    LONG PWRSET::*field;
};

constexpr DisplayAttribute kDisplayAttributes[] = {
    {L"IfDefault", &PWRSET::IfDefault},
    {L"IconNum", &PWRSET::IconNum},
    {L"IfShow", &PWRSET::IfShow},
};

} // namespace

void ReadWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept
{
    for (const Step& step : kSteps)
    {
        FieldOf(set, step) =
            variables::Read(backend, static_cast<int>(set.schemeID), step.ac, VariableOf(step.number));
    }
}

void WriteWholeScheme(const PowerBackend& backend, PWRSET& set) noexcept
{
    for (const Step& step : kSteps)
    {
        variables::Write(backend, static_cast<int>(set.schemeID), step.ac, VariableOf(step.number),
                         static_cast<int>(FieldOf(set, step)));
    }
}

void ReadDisplayAttributes(PWRSET& set, const wchar_t* folder) noexcept
{
    CORVLProfile display;
    const bool isOpen = files::OpenDisplay(display, folder);
    const files::NumberedKey section(files::kDisplaySection, static_cast<int>(set.schemeID));
    for (const DisplayAttribute& attribute : kDisplayAttributes)
    {
        set.*attribute.field = isOpen ? display.GetInt(section.Text(), attribute.key, 0) : 0;
    }
}

void WriteDisplayAttributes(const PWRSET& set, const wchar_t* folder) noexcept
{
    CORVLProfile display;
    if (!files::OpenDisplay(display, folder))
    {
        return;
    }
    const files::NumberedKey section(files::kDisplaySection, static_cast<int>(set.schemeID));
    for (const DisplayAttribute& attribute : kDisplayAttributes)
    {
        display.PutInt(section.Text(), attribute.key, static_cast<int>(set.*attribute.field));
    }
}
