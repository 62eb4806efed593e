// scheme/UserSchemes.cpp
//
// The entries of the user scheme file.

#include "scheme/UserSchemes.h"

#include "foundation/Log.h"
#include "scheme/SchemeName.h"

#include <iterator>

using files::NumberedKey;
using files::ShortText;

namespace
{

// A scheme's name as it is read from an entry: at most 255 characters.
using Name = wchar_t[256];

// How many entries of the form `key` a section has.
int CountEntries(CORVLProfile& users, const wchar_t* section, const wchar_t* key, EntryLimit& limit) noexcept
{
    return limit.Take(users.GetInt(section, user_schemes::kNumber, 0),
                      [&](int entry)
                      {
                          ShortText value;
                          return users.GetString(section, NumberedKey(key, entry).Text(), value) > 0;
                      });
}

// The entry of the scheme in a section of `count` entries, or -1. `absent` stands for an entry that a
// damaged file lacks.
int FindEntry(CORVLProfile& users, const wchar_t* section, int count, int scheme, int absent) noexcept
{
    for (int entry = 0; entry < count; ++entry)
    {
        if (users.GetInt(section, NumberedKey(user_schemes::kScheme, entry).Text(), absent) == scheme)
        {
            return entry;
        }
    }
    return -1;
}

void ReadName(CORVLProfile& users, const wchar_t* section, int entry, Name& name) noexcept
{
    users.GetString(section, NumberedKey(user_schemes::kSchemeName, entry).Text(), name);
}

// True for a name that the system's functions wouldn't give back as it is. They take one pair of quotes off,
// or blanks at both ends.
bool NeedsQuotes(const wchar_t* name) noexcept
{
    const std::size_t length = text::Length(name);
    if (length == 0)
    {
        return false;
    }
    const wchar_t first = name[0];
    const wchar_t last = name[length - 1];
    const bool isQuoted = length > 1 && first == last && (first == L'"' || first == L'\'');
    return isQuoted || text::IsBlank(first) || text::IsBlank(last);
}

// Writes the name of an entry so that a read gives it back. A null name leaves the entry without one.
void WriteName(CORVLProfile& users, const wchar_t* section, int entry, const wchar_t* name) noexcept
{
    const NumberedKey key(user_schemes::kSchemeName, entry);
    if (name == nullptr || !NeedsQuotes(name))
    {
        users.PutString(section, key.Text(), name);
        return;
    }
    // Room for the longest name that a scheme is added with; one that is too long still gets both quotes.
    wchar_t quoted[text::kPathCapacity + 2] = L"\"";
    text::Append(quoted, std::size(quoted) - 1, name);
    text::Append(quoted, L"\"");
    users.PutString(section, key.Text(), quoted);
}

bool Owns(CORVLProfile& users, const wchar_t* section, int scheme, EntryLimit& limit) noexcept
{
    const int count = user_schemes::CountSchemes(users, section, limit);
    return scheme >= 0 && FindEntry(users, section, count, scheme, -1) >= 0;
}

} // namespace

bool user_schemes::Open(CORVLProfile& users, const wchar_t* nameText, const wchar_t* failedText) noexcept
{
    ShortText name;
    static_cast<void>(files::FindName(files::kUsersName, name)); // an empty name opens nothing below
    CORVLBase::DBGOUT(nameText, static_cast<const wchar_t*>(name));
    return Check(files::OpenOwn(users, name), failedText);
}

int user_schemes::CountUsers(CORVLProfile& users, EntryLimit& limit) noexcept
{
    return CountEntries(users, kUserList, kUser, limit);
}

void user_schemes::ReadUser(CORVLProfile& users, int place, ShortText& section) noexcept
{
    users.GetString(kUserList, NumberedKey(kUser, place).Text(), section);
}

int user_schemes::CountSchemes(CORVLProfile& users, const wchar_t* section, EntryLimit& limit) noexcept
{
    return CountEntries(users, section, kScheme, limit);
}

int user_schemes::FindByName(CORVLProfile& users, const wchar_t* section, const wchar_t* name) noexcept
{
    EntryLimit limit;
    const int count = CountSchemes(users, section, limit);
    for (int entry = 0; entry < count; ++entry)
    {
        Name found;
        ReadName(users, section, entry, found);
        if (text::Equal(found, name))
        {
            return users.GetInt(section, NumberedKey(kScheme, entry).Text(), 0);
        }
    }
    return -1;
}

bool user_schemes::BelongsToAnother(CORVLProfile& users, const wchar_t* section, int scheme,
                                    EntryLimit& limit) noexcept
{
    if (Owns(users, section, scheme, limit))
    {
        return false;
    }
    const int count = CountUsers(users, limit);
    for (int user = 0; user < count; ++user)
    {
        ShortText other;
        ReadUser(users, user, other);
        if (Owns(users, other, scheme, limit))
        {
            return true;
        }
    }
    return false;
}

void user_schemes::Remove(CORVLProfile& users, const wchar_t* section, int scheme, EntryLimit& limit) noexcept
{
    const int count = CountSchemes(users, section, limit);
    const int removed = FindEntry(users, section, count, scheme, 0);
    // A number that counts fewer entries than there are would cut the others off.
    if (removed < 0 || limit.WasReached())
    {
        return;
    }
    for (int entry = removed + 1; entry < count; ++entry)
    {
        // The name is read before anything of the lower place is overwritten.
        const int number = users.GetInt(section, NumberedKey(kScheme, entry).Text(), 0);
        Name name;
        ReadName(users, section, entry, name);
        users.PutInt(section, NumberedKey(kScheme, entry - 1).Text(), number);
        WriteName(users, section, entry - 1, name);
    }
    users.PutInt(section, kNumber, count - 1);
}

int user_schemes::AddUser(const wchar_t* section, const wchar_t* user) noexcept
{
    CORVLBase::DBGOUT(L"Enter AddtoUserList %s", user);
    CORVLProfile users;
    if (!Open(users, L"AddtoUserList: the user scheme cfg file name is %s",
              L"AddtoUserList: initialize the user scheme cfg file failed"))
    {
        return -1;
    }
    EntryLimit limit;
    const int count = CountUsers(users, limit);
    CORVLBase::DBGOUT(L"AddtoUserList: get number in userlist is %d", count);
    if (limit.WasReached())
    {
        return -1;
    }
    for (int entry = 0; entry < count; ++entry)
    {
        ShortText listed;
        ReadUser(users, entry, listed);
        if (text::Equal(listed, section))
        {
            return 1;
        }
    }
    users.PutString(kUserList, NumberedKey(kUser, count).Text(), section);
    users.PutInt(kUserList, kNumber, count + 1);
    return 1;
}

int user_schemes::AddScheme(const wchar_t* userKey, const wchar_t* name, const wchar_t* user,
                            int number) noexcept
{
    if (name != nullptr && HasLineBreak(name))
    {
        return -1;
    }
    AddUser(userKey, user);
    ShortText section;
    text::Copy(section, userKey);
    CORVLBase::DBGOUT(L"the user id is %s", section);
    CORVLProfile users;
    if (!Open(users, L"the user scheme cfg file name is %s", L"initialize the user scheme cfg file failed"))
    {
        return -1;
    }
    EntryLimit limit;
    const int count = CountSchemes(users, section, limit);
    CORVLBase::DBGOUT(L"Get number from %s is %d", section, count);
    if (limit.WasReached())
    {
        return -1;
    }
    // The count goes last: until then the new entry doesn't exist.
    users.PutInt(section, NumberedKey(kScheme, count).Text(), number);
    WriteName(users, section, count, name);
    users.PutInt(section, kNumber, count + 1);
    return 1;
}
