// scheme/Variables.cpp
//
// One variable of a scheme: the scheme has to exist, then the path decides.

#include "scheme/SchemeEx.h"
#include "scheme/VariableAccess.h"

int CSchemeEx::GetPwrVariable(int index, int ifAC, const wchar_t* name) noexcept
{
    if (FindPwrScheme(index) == 0)
    {
        DBGOUT(L"FindPwrScheme failed %d\n", GetLastError());
        return -1;
    }
    const bool ac = ifAC != 0;
    return m_bVista != 0 ? vista::ReadVariable(index, ac, name) : xp::ReadVariable(index, ac, name);
}

int CSchemeEx::GetPwrVariable(int, int, const wchar_t*, wchar_t*, int) noexcept
{
    return 0;
}

int CSchemeEx::SetPwrVariable(int index, int ifAC, const wchar_t* name, int value) noexcept
{
    if (FindPwrScheme(index) == 0)
    {
        DBGOUT(L"FindPwrScheme error");
        return -1;
    }
    const bool ac = ifAC != 0;
    return m_bVista != 0 ? vista::WriteVariable(*this, index, ac, name, value)
                         : xp::WriteVariable(index, ac, name, value);
}

int CSchemeEx::SetPwrVariable(int, int, const wchar_t*, const wchar_t*) noexcept
{
    return 0;
}

int CSchemeEx::ValidateData(const wchar_t* name, int value) noexcept
{
    if (name == nullptr)
    {
        return 0;
    }
    const bool accepted = m_bVista != 0 ? vista::Accepts(name, value) : xp::Accepts(name, value);
    return accepted ? 1 : 0;
}
