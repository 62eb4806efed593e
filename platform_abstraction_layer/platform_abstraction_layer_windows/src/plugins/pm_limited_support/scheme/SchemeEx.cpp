// scheme/SchemeEx.cpp
//
// The engine's operations on schemes, in the order of the header. What takes more than a few steps lies in a
// file of its own; clearing, the start with Windows, batteries and devices are in ClearSchemes.cpp,
// ClearAccounts.cpp, AutoRun.cpp, BatteryQueries.cpp and DeviceStatus.cpp.

#include "scheme/SchemeEx.h"

#include "foundation/GuidText.h"
#include "foundation/Log.h"
#include "scheme/Operations.h"
#include "scheme/SchemeName.h"
#include "scheme/SettingCatalogue.h"
#include "scheme/UserSchemes.h"
#include "scheme/Variables.h"
#include "scheme/vista/Operations.h"
#include "scheme/vista/PowerDispatch.h"
#include "scheme/xp/PolicyStore.h"

namespace
{

// Later versions than this one are served by the XP path, whose functions they still have.
constexpr DWORD kVistaMajorVersion = 6;

constexpr int kMostEntries = 10000; // that a deletion reads, of all users together

} // namespace

const PowerBackend& BackendOf(const CSchemeEx& engine) noexcept
{
    return engine.m_bVista != 0 ? vista::kBackend : xp::kBackend;
}

CSchemeEx::CSchemeEx() noexcept = default;
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
    if (!Check(GetVersionExW(reinterpret_cast<OSVERSIONINFOW*>(&version)) != FALSE,
               L"CSchemeEx::Initialize GetVersionEx failed"))
    {
        return;
    }
    if (version.dwMajorVersion != kVistaMajorVersion)
    {
        m_bVista = 0;
        return;
    }
    // The library stays loaded: the table points into it.
    const HMODULE library = LoadLibraryW(L"PowrProf.dll");
    if (Check(library != nullptr, L"CSchemeEx::Initialize hModule==NULL"))
    {
        BindPowerFunctions(library);
        m_bVista = 1;
    }
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

// The setting catalogue.

int CSchemeEx::GetPwrVariableOptCount(const wchar_t* name) noexcept
{
    return catalogue::OptionCount(name);
}

int CSchemeEx::GetPwrVariableOptValue(const wchar_t* name, int option) noexcept
{
    return catalogue::Option(name, option);
}

int CSchemeEx::GetPwrVariableOptDesc(const wchar_t* name, int option, wchar_t* buffer, int size) noexcept
{
    if (option >= catalogue::OptionCount(name))
    {
        return -1;
    }
    return catalogue::CopyText(name, files::NumberedKey(L"DescOption%d", option).Text(), buffer, size);
}

int CSchemeEx::GetPwrVariableUnit(const wchar_t* name, wchar_t* buffer, int size) noexcept
{
    return catalogue::CopyText(name, L"Unit", buffer, size);
}

int CSchemeEx::GetPwrVariableName(const wchar_t* name, wchar_t* buffer, int size) noexcept
{
    const Variable* const variable = FindVariable(name);
    if (variable == nullptr)
    {
        return -1;
    }
    return !variable->hasDisplayName || catalogue::CopyText(name, L"Name", buffer, size) > 0 ? 0 : -1;
}

// Reading.

int CSchemeEx::GetPwrVariable(int index, int ifAC, const wchar_t* name) noexcept
{
    return variables::Read(BackendOf(*this), index, ifAC != 0, name);
}

int CSchemeEx::GetPwrVariable(int, int, const wchar_t*, wchar_t*, int) noexcept
{
    return 0;
}

int CSchemeEx::GetPwrVariableAll(PWRSET& set, int index) noexcept
{
    set.schemeID = index;
    ReadWholeScheme(BackendOf(*this), set);
    ReadDisplayAttributes(set, m_szProfilePath);
    return 1;
}

int CSchemeEx::GetActivePwrScheme(int) noexcept
{
    return BackendOf(*this).active();
}

int CSchemeEx::GetHibernateTimeOutFromUserPowerPolicy(bool ifAC, POWER_POLICY& policy) noexcept
{
    return HibernateTimeOf(policy, ifAC);
}

int CSchemeEx::GetIfAC() noexcept
{
    SYSTEM_POWER_STATUS status = {};
    ::GetSystemPowerStatus(&status);
    return status.ACLineStatus == AC_LINE_ONLINE ? 1 : 0;
}

// Writing.

int CSchemeEx::SetPwrVariable(int index, int ifAC, const wchar_t* name, int value) noexcept
{
    return variables::Write(BackendOf(*this), index, ifAC != 0, name, value);
}

int CSchemeEx::SetPwrVariable(int, int, const wchar_t*, const wchar_t*) noexcept
{
    return 0;
}

int CSchemeEx::SetPwrVariable(PWRSET& set) noexcept
{
    WriteWholeScheme(BackendOf(*this), set);
    WriteDisplayAttributes(set, m_szProfilePath);
    return static_cast<int>(set.schemeID);
}

int CSchemeEx::SetPwrCfgVariable(PWRSET& set) noexcept
{
    WriteDisplayAttributes(set, m_szProfilePath);
    return 1;
}

// Finding schemes, and the operating system's stores.

int CSchemeEx::FindPwrScheme(int index) noexcept
{
    return BackendOf(*this).exists(index) ? 1 : 0;
}

int CSchemeEx::FindPwrScheme(const wchar_t* name) noexcept
{
    return name != nullptr ? scheme_texts::FindByName(BackendOf(*this), name) : -1;
}

int CSchemeEx::FindPwrScheme(const wchar_t* name, const wchar_t*) noexcept
{
    CORVLProfile users;
    return name != nullptr && files::OpenUsers(users) ? user_schemes::FindByName(users, m_szSubKey, name)
                                                      : -1;
}

int CSchemeEx::SchemeIndexToGuid(int index, GUID* guid) noexcept
{
    return guid != nullptr && vista::RowToGuid(index, *guid) ? 1 : 0;
}

int CSchemeEx::SchemeGuidToIndex(const GUID* guid) noexcept
{
    return guid != nullptr ? vista::FindRow(*guid, BackendOf(*this).maxIndex) : -1;
}

int CSchemeEx::GetPwrSchemeMaxIndex() noexcept
{
    return BackendOf(*this).maxIndex();
}

int CSchemeEx::ReadUserActivePowerScheme(const wchar_t* subKey) noexcept
{
    return policy_store::ReadUserActiveScheme(subKey);
}

int CSchemeEx::ReadUserPowerPolicy(int index, const wchar_t* subKey, unsigned char* data,
                                   ULONG* size) noexcept
{
    return policy_store::ReadUserPolicy(index, subKey, data, size);
}

int CSchemeEx::ReadMachinePowerPolicy(int index, unsigned char* data, ULONG* size) noexcept
{
    return policy_store::ReadMachinePolicy(index, data, size);
}

// Applying.

int CSchemeEx::SetActivePwrScheme(int nIndex) noexcept
{
    return apply::ForMachine(*this, nIndex);
}

int CSchemeEx::SetActivePwrScheme(int nIndex, const wchar_t*) noexcept
{
    SetGolbalPwrPolicyFromCurrentUser(nIndex);
    return apply::ForUser(*this, nIndex);
}

void CSchemeEx::SetGolbalPwrPolicyFromCurrentUser(int nIndex) noexcept
{
    TakeOverUserPolicy(BackendOf(*this), m_szSubKey, nIndex);
}

// Adding and renaming.

int CSchemeEx::AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from, const wchar_t* user) noexcept
{
    return add::CopyForUser(*this, name, desc, from, user);
}

int CSchemeEx::AddPwrScheme(const wchar_t* name, const wchar_t* desc, int from) noexcept
{
    return add::Copy(*this, name, desc, from);
}

int CSchemeEx::AddPwrScheme(PWRSET& set, const wchar_t* user) noexcept
{
    return add::WholeForUser(*this, set, user);
}

int CSchemeEx::AddtoUserList(const wchar_t* user) noexcept
{
    return user_schemes::AddUser(m_szSubKey, user);
}

int CSchemeEx::AddtoUserScheme(const wchar_t* name, const wchar_t* user, int number) noexcept
{
    return user_schemes::AddScheme(m_szSubKey, name, user, number);
}

int CSchemeEx::SetPwrSchemeNameDesc(int index, const wchar_t* name, const wchar_t* desc) noexcept
{
    SchemeName trimmed;
    if (!trimmed.Take(name))
    {
        return -1;
    }
    const PowerBackend& backend = BackendOf(*this);
    if (!backend.exists(index))
    {
        DBGOUT(L"CSchemeEx::SetPwrSchemeNameDesc: Can't Find pwr scheme: %ld", index);
        return -1;
    }
    return backend.rename(index, trimmed, desc);
}

// Deleting and enumerating.

int CSchemeEx::DeletePwrScheme(int index) noexcept
{
    const PowerBackend& backend = BackendOf(*this);
    return !backend.isProtected(index) && backend.remove(index) ? 1 : 0;
}

int CSchemeEx::DeletePwrScheme(int index, const wchar_t*) noexcept
{
    if (BackendOf(*this).isProtected(index))
    {
        return 0;
    }
    files::ShortText section;
    text::Copy(section, m_szSubKey);
    EntryLimit limit(kMostEntries);
    // A deletion that is refused leaves no file behind.
    CORVLProfile users;
    const bool isOpen = files::OpenPresentUsers(users);
    if (isOpen && user_schemes::BelongsToAnother(users, section, index, limit))
    {
        DBGOUT(L"DeletePwrScheme: scheme %d belongs to another user", index);
        return 0;
    }
    if (DeletePwrScheme(index) == 0)
    {
        return 0;
    }
    if (isOpen || files::OpenUsers(users))
    {
        user_schemes::Remove(users, section, index, limit);
    }
    return 1;
}

int CSchemeEx::EnumPwrSchemes(PwrSchemeCallback callback, LONG argument) noexcept
{
    return callback != nullptr ? scheme_texts::Visit(BackendOf(*this), callback, argument) : 0;
}

int CSchemeEx::GetPwrSchemeNameDesc(int index, wchar_t* name, ULONG* nameLen, wchar_t* desc,
                                    ULONG* descLen) noexcept
{
    const PowerBackend& backend = BackendOf(*this);
    return backend.exists(index) ? scheme_texts::Copy(backend, {index, name, nameLen, desc, descLen}) : 0;
}

// The processor.

int CSchemeEx::GetCPUSpeed() noexcept
{
    const int active = GetActivePwrScheme(0);
    return active != -1 ? variables::Read(BackendOf(*this), active, GetIfAC() != 0, VariableOf(kCpuSpeed))
                        : -1;
}

int CSchemeEx::SetCPUSpeed(int speed) noexcept
{
    const int active = GetActivePwrScheme(0);
    if (active == -1)
    {
        return -1;
    }
    const PowerBackend& backend = BackendOf(*this);
    const Variable& variable = VariableOf(kCpuSpeed);
    const int before = variables::Read(backend, active, GetIfAC() != 0, variable);
    // The write goes by the power source of its own moment. Whether it worked or not, the scheme is applied.
    variables::Write(backend, active, GetIfAC() != 0, variable, speed);
    SetActivePwrScheme(active);
    return before;
}

// For derived classes.

int CSchemeEx::ParseVarName(const wchar_t* name) noexcept
{
    const Variable* const variable = FindVariable(name);
    return variable != nullptr ? NumberOf(*variable) : -1;
}

int CSchemeEx::ParseVarName(const wchar_t* name, GUID* subGroup, GUID* setting) noexcept
{
    const Variable* const variable = FindVariable(name);
    const bool isComplete = variable != nullptr && subGroup != nullptr && setting != nullptr &&
                            BackendOf(*this).findSetting(*variable, *subGroup, *setting);
    return isComplete ? NumberOf(*variable) : -1;
}

int CSchemeEx::GuidFromString(const wchar_t* text, GUID* guid) noexcept
{
    return ParseGuid(text, guid);
}

int CSchemeEx::GuidIntoString(GUID* guid, wchar_t* buffer, ULONG* size) noexcept
{
    if (guid == nullptr || buffer == nullptr || size == nullptr)
    {
        return 0;
    }
    if (*size <= kGuidTextLength)
    {
        // First the text alone, then the terminator that it wants too.
        *size = *size < kGuidTextLength ? kGuidTextLength : kGuidTextLength + 1;
        return 0;
    }
    FormatGuid(*guid, buffer, *size);
    return 1;
}

int CSchemeEx::ValidateData(const wchar_t* name, int value) noexcept
{
    return name != nullptr && BackendOf(*this).accepts(name, value) ? 1 : 0;
}

int CSchemeEx::GetHiberTimeFromStandbyTime(int standby) noexcept
{
    return catalogue::HibernateTimeAfter(standby);
}
