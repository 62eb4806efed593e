// scheme/ClearSchemes.cpp
//
// Taking the schemes off the machine, one user's or everybody's, with the files and the key that belong to
// them. Best effort: a scheme, file or key that can't be removed stays, and the clearing goes on.

#include "foundation/Owners.h"
#include "foundation/UserFolders.h"
#include "scheme/SchemeEx.h"
#include "scheme/UserSchemes.h"

#include <iterator>

namespace
{

constexpr int kDefaultScheme = 1;
constexpr int kMostCleared = 10000; // entries; each deletion goes to files of its own
constexpr const wchar_t* kProductKey = L"Software\\Kelvo";
constexpr const wchar_t* kDeletedText = L"ClearPwrSchemes: DeleteFile %s";

// What is logged for a user, with section and number of schemes, and for each scheme.
struct UserTexts
{
    const wchar_t* user;
    const wchar_t* scheme;
};

// Applies a scheme that stays and opens the user scheme file; false when that can't be opened.
bool BeginClearing(CSchemeEx& engine, CORVLProfile& users) noexcept
{
    engine.SetActivePwrScheme(kDefaultScheme);
    return user_schemes::Open(users, L"ClearPwrSchemes: the user scheme cfg file name is %s",
                              L"ClearPwrSchemes: initialize the user scheme cfg file failed");
}

// Removes one user's schemes and the section. False when there are more than the limit allows: the section
// then stays, or the rest would have no owner.
bool ClearUser(CSchemeEx& engine, CORVLProfile& users, const wchar_t* section, const UserTexts& texts,
               EntryLimit& limit) noexcept
{
    const int count = user_schemes::CountSchemes(users, section, limit);
    CORVLBase::DBGOUT(texts.user, section, count);
    for (int entry = count - 1; entry >= 0; --entry)
    {
        const int scheme = users.GetInt(section, files::NumberedKey(user_schemes::kScheme, entry).Text(), -1);
        engine.DeletePwrScheme(scheme);
        CORVLBase::DBGOUT(texts.scheme, scheme);
    }
    if (limit.WasReached())
    {
        return false;
    }
    users.PutString(section, nullptr, nullptr);
    return true;
}

// The same for all users, up to the first whose section stays.
bool ClearAllUsers(CSchemeEx& engine, CORVLProfile& users) noexcept
{
    constexpr UserTexts texts{L"ClearPwrSchemes: Get username=%s, Number=%d",
                              L"ClearPwrSchemes: DeletePwrScheme(%d)"};
    EntryLimit limit(kMostCleared);
    const int count = user_schemes::CountUsers(users, limit);
    for (int user = 0; user < count; ++user)
    {
        files::ShortText section;
        user_schemes::ReadUser(users, user, section);
        if (!ClearUser(engine, users, section, texts, limit))
        {
            return false;
        }
    }
    return !limit.WasReached();
}

// The companion application's key of the machine; false when it can't be removed. The same steps in an
// account's hive have calls of their own, in ClearAccounts.cpp: a trace tells the two by the place of a call.
bool RemoveMachineKey() noexcept
{
    owners::Key key;
    LSTATUS result = RegOpenKeyExW(HKEY_LOCAL_MACHINE, kProductKey, 0, KEY_ALL_ACCESS, key.Put());
    if (result == ERROR_SUCCESS)
    {
        result = RegDeleteKeyW(key.Get(), L"ORVA");
    }
    if (result != ERROR_SUCCESS)
    {
        CORVLBase::DBGOUT(L"open key %s failed at %d", kProductKey, result);
        return false;
    }
    return true;
}

} // namespace

int CSchemeEx::ClearORV(int what) noexcept
{
    if (what == 1)
    {
        DBGOUT(L"enter ClearORV: ClearCurrentUserSettings");
        ClearCurrentUserSettings();
    }
    else if (what == 0)
    {
        DBGOUT(L"enter ClearORV: ClearAllUserSettings");
        ClearPwrSchemes();
        ClearCfgSettings();
    }
    return 1;
}

int CSchemeEx::ClearCurrentUserSettings() noexcept
{
    CORVLProfile users;
    if (!BeginClearing(*this, users))
    {
        return -1;
    }
    EntryLimit limit(kMostCleared);
    ClearUser(*this, users, m_szSubKey,
              {L"ClearCurrentUserSettings: Get username=%s, Number=%d",
               L"ClearCurrentUserSettings: DeletePwrScheme(%d)"},
              limit);
    files::DeleteBelow(m_szProfilePath, L"\\OrvProfile.ini", L"ClearCurrentUserSettings: delete file = %s");
    files::DeleteBelow(m_szProfilePath, L"\\PowerSchemes.ini", L"ClearCurrentUserSettings: DeleteFile %s");
    return 1;
}

int CSchemeEx::ClearPwrSchemes() noexcept
{
    DBGOUT(L"enter ClearPwrSchemes");
    CORVLProfile users;
    if (!BeginClearing(*this, users))
    {
        return -1;
    }
    const bool isWhole = ClearAllUsers(*this, users);

    wchar_t folder[text::kPathCapacity];
    if (!folders::GetConfigurationFolder(folder, std::size(folder)))
    {
        return 0;
    }
    if (isWhole)
    {
        files::DeleteBelow(folder, L"\\UserSchemes.ini", kDeletedText);
    }
    files::DeleteBelow(folder, L"\\PowerSchemes.ini", kDeletedText);
    return RemoveMachineKey() ? 1 : 0;
}
