// scheme/WholeScheme.cpp
//
// A whole scheme at once: a fixed series of single variables, read or written in the same order.

#include "scheme/WholeScheme.h"

#include "scheme/SchemeEx.h"
#include "scheme/SchemeFiles.h"
#include "scheme/VariableTable.h"

namespace
{

struct Step
{
    VariableNumber number;
    int ifAC;
};

constexpr Step kSteps[] = {
    {kCpuSpeed, 1},
    {kCpuSpeed, 0},
    {kStandbyTimeOut, 1},
    {kStandbyTimeOut, 0},
    {kMonitorOffTimeOut, 1},
    {kMonitorOffTimeOut, 0},
    {kBacklightLevel, 1},
    {kBacklightLevel, 0},
    {kLanStatus, 1},
    {kLanStatus, 0},
    {kLanSpeed, 1},
    {kLanSpeed, 0},
    {kLums, 1},
    {kWifi, 1},
    {kWifi, 0},
    {kThreeG, 1},
    {kThreeG, 0},
};

LONG& FieldOf(PWRSET& set, const Step& step) noexcept
{
    PWRVALUES& half = step.ifAC != 0 ? set.ac : set.dc;
    return half.*VariableOf(step.number).member;
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

void WriteWholeScheme(CSchemeEx& engine, PWRSET& set) noexcept
{
    for (const Step& step : kSteps)
    {
        engine.SetPwrVariable(static_cast<int>(set.schemeID), step.ifAC, VariableOf(step.number).name,
                              static_cast<int>(FieldOf(set, step)));
    }
}

int CSchemeEx::GetPwrVariableAll(PWRSET& set, int index) noexcept
{
    set.schemeID = index;
    for (const Step& step : kSteps)
    {
        FieldOf(set, step) = GetPwrVariable(index, step.ifAC, VariableOf(step.number).name);
    }

    CORVLProfile display;
    const bool isOpen = files::OpenDisplay(display, m_szProfilePath);
    files::ShortText section;
    text::Format(section, files::kDisplaySection, index);
    for (const DisplayAttribute& attribute : kDisplayAttributes)
    {
        set.*attribute.field = isOpen ? display.GetInt(section, attribute.key, 0) : 0;
    }
    return 1;
}

int CSchemeEx::SetPwrVariable(PWRSET& set) noexcept
{
    WriteWholeScheme(*this, set);
    SetPwrCfgVariable(set);
    return static_cast<int>(set.schemeID);
}

int CSchemeEx::SetPwrCfgVariable(PWRSET& set) noexcept
{
    CORVLProfile display;
    if (!files::OpenDisplay(display, m_szProfilePath))
    {
        return 1;
    }
    files::ShortText section;
    text::Format(section, files::kDisplaySection, set.schemeID);
    for (const DisplayAttribute& attribute : kDisplayAttributes)
    {
        display.PutInt(section, attribute.key, static_cast<int>(set.*attribute.field));
    }
    return 1;
}
