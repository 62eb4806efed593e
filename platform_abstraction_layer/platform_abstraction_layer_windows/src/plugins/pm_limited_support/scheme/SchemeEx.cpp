// scheme/SchemeEx.cpp
//
// The engine's object and the choice of its path.

#include "scheme/SchemeEx.h"

#include "scheme/PowerDispatch.h"

namespace
{

// Later versions than this one are served by the XP path, whose functions they still have.
constexpr DWORD kVistaMajorVersion = 6;

} // namespace

CSchemeEx::CSchemeEx() noexcept : m_bVista(0), m_szUserId{}, m_szSubKey{}, m_szProfilePath{}
{
}
CSchemeEx::CSchemeEx(const CSchemeEx&) noexcept = default;
CSchemeEx& CSchemeEx::operator=(const CSchemeEx&) noexcept = default;
CSchemeEx::~CSchemeEx() = default;

ULONG CSchemeEx::GetVersion() noexcept
{
    return kClassVersion;
}

void CSchemeEx::Initialize() noexcept
{
    OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW);
    if (!GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)))
    {
        DBGOUT(L"CSchemeEx::Initialize GetVersionEx failed");
        return;
    }
    if (version.dwMajorVersion != kVistaMajorVersion)
    {
        m_bVista = 0;
        return;
    }
    // The library stays loaded: the table points into it.
    const HMODULE library = LoadLibraryW(L"PowrProf.dll");
    if (library == nullptr)
    {
        DBGOUT(L"CSchemeEx::Initialize hModule==NULL");
        return;
    }
    BindPowerFunctions(library);
    m_bVista = 1;
}

int CSchemeEx::InitCfgFile() noexcept
{
    return 1;
}

int CSchemeEx::SetSubKeyProfilePath(const wchar_t* userId, const wchar_t* subKey,
                                    const wchar_t* profilePath) noexcept
{
    text::Copy(m_szUserId, userId);
    text::Copy(m_szSubKey, subKey);
    text::Copy(m_szProfilePath, profilePath);
    return 1;
}
