// tests/advapi32/RegistryConformanceTest.cpp
//
// What the registry functions do, in plain Win32 below one key of the running user: the simulated platform
// and Windows itself are held to the same tables.
//
// Wine, on which the Windows build runs in the tests, differs in the ways that `onWine` of a row tells.

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

namespace
{

constexpr const wchar_t* kScratch = L"Software\\PmConformance";
constexpr DWORD kNameRoom = 300;
constexpr DWORD kUntouched = 0xA5A5A5A5;
constexpr DWORD kLastError = 4711;

bool IsWine()
{
    const HMODULE library = GetModuleHandleW(L"ntdll.dll");
    return library != nullptr && GetProcAddress(library, "wine_get_version") != nullptr;
}

void RemoveTree(HKEY parent, const wchar_t* name)
{
    HKEY key = nullptr;
    if (RegOpenKeyExW(parent, name, 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS)
    {
        return;
    }
    wchar_t child[kNameRoom];
    while (RegEnumKeyW(key, 0, child, kNameRoom) == ERROR_SUCCESS)
    {
        RemoveTree(key, child);
    }
    RegCloseKey(key);
    RegDeleteKeyW(parent, name);
}

/// ASCII as it is, other units by number.
std::string Narrow(const wchar_t* text, std::size_t length)
{
    std::string narrow;
    for (std::size_t index = 0; index < length; ++index)
    {
        const auto unit = static_cast<unsigned>(text[index]);
        narrow += unit >= 0x20 && unit < 0x7F ? std::string(1, static_cast<char>(unit))
                                              : '<' + std::to_string(unit) + '>';
    }
    return narrow;
}

std::string Number(DWORD number)
{
    return number == kUntouched ? "-" : std::to_string(number);
}

/// What one step gave.
struct Step
{
    Step(LONG status) : text(std::to_string(status))
    {
    }
    Step(std::string given) : text(std::move(given))
    {
    }

    std::string text;
};

/// What several steps gave, which a braced list makes in their order.
std::string Joined(std::initializer_list<Step> steps)
{
    std::string text;
    for (const Step& step : steps)
    {
        text += (text.empty() ? "" : " ") + step.text;
    }
    return text;
}

/// A key that closes itself.
class OpenKey
{
public:
    OpenKey() = default;
    OpenKey(HKEY parent, const wchar_t* subKey, REGSAM access = KEY_ALL_ACCESS)
        : m_status(RegOpenKeyExW(parent, subKey, 0, access, &m_key))
    {
    }
    ~OpenKey()
    {
        if (m_key != nullptr)
        {
            RegCloseKey(m_key);
        }
    }
    OpenKey(const OpenKey&) = delete;
    OpenKey& operator=(const OpenKey&) = delete;

    HKEY Get() const
    {
        return m_key;
    }
    LONG Status() const
    {
        return m_status;
    }

private:
    HKEY m_key = nullptr;
    LONG m_status = 0;
};

LONG Make(HKEY parent, const wchar_t* subKey, DWORD* disposition = nullptr)
{
    HKEY key = nullptr;
    const LONG status = RegCreateKeyExW(parent, subKey, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                                        nullptr, &key, disposition);
    if (status == ERROR_SUCCESS)
    {
        RegCloseKey(key);
    }
    return status;
}

LONG SetText(HKEY key, const wchar_t* name, const wchar_t* text)
{
    DWORD size = sizeof(wchar_t);
    for (const wchar_t* unit = text; *unit != 0; ++unit)
    {
        size += static_cast<DWORD>(sizeof(wchar_t));
    }
    return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text), size);
}

std::string GetText(HKEY key, const wchar_t* name)
{
    wchar_t text[64] = {};
    DWORD size = sizeof text;
    const LONG status = RegQueryValueExW(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(text), &size);
    return status == ERROR_SUCCESS ? Narrow(text, size / sizeof(wchar_t) - 1) : std::to_string(status);
}

class RegistryConformance : public testing::Test
{
protected:
    void SetUp() override
    {
        RemoveTree(HKEY_CURRENT_USER, kScratch);
        ASSERT_EQ(ERROR_SUCCESS, RegCreateKeyExW(HKEY_CURRENT_USER, kScratch, 0, nullptr, 0, KEY_ALL_ACCESS,
                                                 nullptr, &m_key, nullptr));
    }

    void TearDown() override
    {
        RegCloseKey(m_key);
        RemoveTree(HKEY_CURRENT_USER, kScratch);
    }

    HKEY m_key = nullptr;
};

/// One thing done to the scratch key and what comes of it, as text.
struct Case
{
    const char* name;
    std::string (*act)(HKEY key);
    std::string expected;
    std::string onWine = {}; ///< what Wine does instead
};

template <std::size_t Count>
void Check(const Case (&cases)[Count], HKEY key)
{
    for (const Case& row : cases)
    {
        SCOPED_TRACE(row.name);
        SetLastError(kLastError);
        const std::string outcome = row.act(key);
        const DWORD error = GetLastError();
        EXPECT_EQ(kLastError, error);
        EXPECT_EQ(IsWine() && !row.onWine.empty() ? row.onWine : row.expected, outcome);
        wchar_t name[kNameRoom];
        while (RegEnumKeyW(key, 0, name, kNameRoom) == ERROR_SUCCESS)
        {
            RemoveTree(key, name);
        }
        DWORD length = kNameRoom;
        while (RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS)
        {
            RegDeleteValueW(key, name);
            length = kNameRoom;
        }
    }
}

struct ValueCase
{
    const char* name;
    DWORD type;
    std::string stored;
    DWORD room;
    LONG status;
    std::string read; ///< as many bytes as the buffer's changed part
};

// Type and size come out as stored, the size also when the room is too small; nothing is written behind it.
TEST_F(RegistryConformance, ValuesComeOutAsTheyWentIn)
{
    const std::string text("a\0b\0\0\0", 6);
    const std::string open("a\0b\0", 4);
    const ValueCase rows[] = {
        {"number", REG_DWORD, std::string("\x2A\0\0\0", 4), 4, 0, std::string("\x2A\0\0\0", 4)},
        {"number with much room", REG_DWORD, "\x01\x02\x03\x04", 40, 0, "\x01\x02\x03\x04"},
        {"number without room", REG_DWORD, "\x01\x02\x03\x04", 3, ERROR_MORE_DATA, ""},
        {"number of three bytes", REG_DWORD, "\x01\x02\x03", 8, 0, "\x01\x02\x03"},
        {"number of eight bytes", REG_QWORD, "12345678", 8, 0, "12345678"},
        {"no bytes", REG_BINARY, "", 8, 0, ""},
        {"no bytes and no room", REG_BINARY, "", 0, 0, ""},
        {"bytes", REG_BINARY, std::string("\0\xFF\n\r\0", 5), 5, 0, std::string("\0\xFF\n\r\0", 5)},
        {"bytes without room", REG_BINARY, "12345", 4, ERROR_MORE_DATA, ""},
        {"bytes and room for none", REG_BINARY, "12345", 0, ERROR_MORE_DATA, ""},
        {"text", REG_SZ, text, 6, 0, text},
        {"text without room for its end", REG_SZ, text, 4, ERROR_MORE_DATA, ""},
        {"empty text", REG_SZ, std::string("\0\0", 2), 8, 0, std::string("\0\0", 2)},
        {"text of no bytes", REG_SZ, "", 8, 0, ""},
        {"text without end gets one", REG_SZ, open, 6, 0, open + std::string("\0\0", 2)},
        {"unless there is no room", REG_SZ, open, 5, 0, open},
        {"nor error", REG_SZ, open, 4, 0, open},
        {"two ends", REG_SZ, text + std::string("\0\0", 2), 8, 0, text + std::string("\0\0", 2)},
        {"zero inside", REG_SZ, std::string("a\0\0\0b\0\0\0", 8), 8, 0, std::string("a\0\0\0b\0\0\0", 8)},
        {"odd number of bytes", REG_SZ, "abc", 3, 0, "abc"},
        {"lone surrogate", REG_SZ, std::string("\x00\xD8\0\0", 4), 4, 0, std::string("\x00\xD8\0\0", 4)},
        {"line end in a text", REG_SZ, std::string("a\0\n\0\0\0", 6), 6, 0, std::string("a\0\n\0\0\0", 6)},
        {"text with a variable", REG_EXPAND_SZ, text, 6, 0, text},
        {"list of texts", REG_MULTI_SZ, text + text + std::string("\0\0", 2), 40, 0,
         text + text + std::string("\0\0", 2)},
        {"no type", REG_NONE, "xyz", 8, 0, "xyz"},
        {"a type of one's own", 0x12345, "xyz", 8, 0, "xyz"},
    };
    for (const ValueCase& row : rows)
    {
        SCOPED_TRACE(row.name);
        const auto size = static_cast<DWORD>(row.stored.size());
        // Windows adds a terminator that lies behind the given bytes.
        const std::string behind = row.stored + "####";
        ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(m_key, L"v", 0, row.type,
                                                reinterpret_cast<const BYTE*>(behind.data()), size));
        BYTE data[48];
        std::memset(data, '#', sizeof data);
        DWORD type = kUntouched;
        DWORD found = row.room;
        EXPECT_EQ(row.status, RegQueryValueExW(m_key, L"v", nullptr, &type, data, &found));
        EXPECT_EQ(row.type, type);
        EXPECT_EQ(size, found);
        EXPECT_EQ(row.read, std::string(reinterpret_cast<char*>(data), row.read.size()));
        EXPECT_TRUE(std::all_of(data + row.room, std::end(data), [](BYTE byte) { return byte == '#'; }));
        found = kUntouched;
        EXPECT_EQ(ERROR_SUCCESS, RegQueryValueExW(m_key, L"v", nullptr, nullptr, nullptr, &found));
        EXPECT_EQ(size, found);
    }
}

std::string Query(HKEY key, const wchar_t* name, DWORD* type, BYTE* data, DWORD* size)
{
    return std::to_string(RegQueryValueExW(key, name, nullptr, type, data, size));
}

TEST_F(RegistryConformance, ValueNames)
{
    const Case cases[] = {
        {"default by null",
         [](HKEY key)
         {
             SetText(key, nullptr, L"x");
             return Joined({GetText(key, nullptr), GetText(key, L"")});
         },
         "x x"},
        {"default by empty name",
         [](HKEY key)
         {
             SetText(key, L"", L"x");
             return GetText(key, nullptr);
         },
         "x"},
        {"no default", [](HKEY key) { return GetText(key, nullptr); }, "2"},
        {"no value", [](HKEY key) { return GetText(key, L"absent"); }, "2"},
        {"case doesn't matter",
         [](HKEY key)
         {
             SetText(key, L"NaMe", L"x");
             return GetText(key, L"nAmE");
         },
         "x"},
        {"nor beyond ASCII",
         [](HKEY key)
         {
             SetText(key, L"\x00C4\x0416", L"x");
             return GetText(key, L"\x00E4\x0436");
         },
         "x"},
        {"the first spelling stays",
         [](HKEY key)
         {
             SetText(key, L"NaMe", L"x");
             SetText(key, L"name", L"y");
             wchar_t name[8] = {};
             DWORD length = 8;
             RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr);
             return Joined({Narrow(name, length), GetText(key, L"NAME")});
         },
         "NaMe y"},
        {"any character",
         [](HKEY key)
         {
             const wchar_t* const names[] = {L"a/b",  L"a\\b", L"..",  L".", L"=",      L"%3D",  L"a=b",
                                             L"*?<>", L" a ",  L"a\n", L"%", L"\x263A", L"a:b|c"};
             std::string bad;
             for (const wchar_t* const name : names)
             {
                 SetText(key, name, name);
             }
             for (const wchar_t* const name : names)
             {
                 const std::string shown = Narrow(name, static_cast<std::size_t>(lstrlenW(name)));
                 bad += GetText(key, name) == shown ? "" : shown;
             }
             return bad;
         },
         ""},
        {"a value and a key of one name",
         [](HKEY key)
         {
             SetText(key, L"same", L"x");
             return Joined({Make(key, L"same"), GetText(key, L"same")});
         },
         "0 x"},
        {"another type takes its place",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             RegSetValueExW(key, L"v", 0, REG_BINARY, nullptr, 0);
             DWORD type = 0;
             DWORD size = 99;
             return Joined({Query(key, L"v", &type, nullptr, &size), Number(type), Number(size)});
         },
         "0 3 0"},
    };
    Check(cases, m_key);
}

TEST_F(RegistryConformance, QueriesWithoutAllPointers)
{
    const Case cases[] = {
        {"only whether it is there",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             return Joined(
                 {Query(key, L"v", nullptr, nullptr, nullptr), Query(key, L"w", nullptr, nullptr, nullptr)});
         },
         "0 2"},
        {"only the type",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             DWORD type = kUntouched;
             return Joined({Query(key, L"v", &type, nullptr, nullptr), Number(type)});
         },
         "0 1"},
        {"a buffer without size",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             BYTE data[8];
             return Query(key, L"v", nullptr, data, nullptr);
         },
         "87"},
        {"a buffer without size, and no value",
         [](HKEY key)
         {
             BYTE data[8];
             return Query(key, L"v", nullptr, data, nullptr);
         },
         "87"},
        {"reserved pointer",
         [](HKEY key)
         {
             DWORD reserved = 0;
             return std::to_string(RegQueryValueExW(key, L"v", &reserved, nullptr, nullptr, nullptr));
         },
         "87"},
        {"nothing there, size",
         [](HKEY key)
         {
             BYTE data[8];
             DWORD size = 8;
             return Query(key, L"v", nullptr, data, &size);
         },
         "2"},
        {"no data to set",
         [](HKEY key) { return std::to_string(RegSetValueExW(key, L"v", 0, REG_BINARY, nullptr, 4)); },
         "998"},
    };
    Check(cases, m_key);
}

std::string OpenStatus(HKEY key, const wchar_t* subKey, REGSAM access = KEY_READ)
{
    HKEY opened = nullptr;
    const LONG status = RegOpenKeyExW(key, subKey, 0, access, &opened);
    std::string shown = std::to_string(status);
    if (status == ERROR_SUCCESS)
    {
        shown += opened == key ? " same" : "";
        RegCloseKey(opened);
    }
    return shown + (status != ERROR_SUCCESS && opened != nullptr ? " handle" : "");
}

TEST_F(RegistryConformance, KeyPaths)
{
    const Case cases[] = {
        {"child",
         [](HKEY key)
         {
             Make(key, L"Child");
             return OpenStatus(key, L"Child");
         },
         "0"},
        {"case doesn't matter",
         [](HKEY key)
         {
             Make(key, L"Child\\Grand");
             return OpenStatus(key, L"cHILD\\gRAND");
         },
         "0"},
        {"backslash at the end",
         [](HKEY key)
         {
             Make(key, L"Child");
             return OpenStatus(key, L"Child\\");
         },
         "0"},
        {"two at the end",
         [](HKEY key)
         {
             Make(key, L"Child");
             return OpenStatus(key, L"Child\\\\");
         },
         "0"},
        {"doubled inside",
         [](HKEY key)
         {
             Make(key, L"Child\\Grand");
             return OpenStatus(key, L"Child\\\\Grand");
         },
         "0"},
        {"backslash in front",
         [](HKEY key)
         {
             Make(key, L"Child");
             return OpenStatus(key, L"\\Child");
         },
         "161"},
        {"slash is a character",
         [](HKEY key)
         {
             Make(key, L"a/b");
             return Joined({OpenStatus(key, L"a/b"), OpenStatus(key, L"a\\b")});
         },
         "0 2"},
        {"missing", [](HKEY key) { return OpenStatus(key, L"Missing"); }, "2"},
        {"missing in between", [](HKEY key) { return OpenStatus(key, L"Missing\\Child"); }, "2"},
        {"below a value",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             return Joined({OpenStatus(key, L"v"), OpenStatus(key, L"v\\w")});
         },
         "2 2"},
        {"null opens anew", [](HKEY key) { return OpenStatus(key, nullptr); }, "0"},
        {"empty opens anew", [](HKEY key) { return OpenStatus(key, L""); }, "0"},
        {"null of a predefined key", [](HKEY) { return OpenStatus(HKEY_USERS, nullptr); }, "0 same"},
        {"dots are names",
         [](HKEY key) {
             return Joined({OpenStatus(key, L"."), OpenStatus(key, L"..\\PmConformance")});
         },
         "2 2"},
        {"access to nothing",
         [](HKEY key)
         {
             Make(key, L"Child");
             return OpenStatus(key, L"Child", 0);
         },
         "5", "0"},
        {"the most that is allowed",
         [](HKEY key)
         {
             Make(key, L"Child");
             const OpenKey child(key, L"Child", MAXIMUM_ALLOWED);
             return std::to_string(SetText(child.Get(), L"v", L"x"));
         },
         "0"},
        {"no place for the handle",
         [](HKEY key) { return std::to_string(RegOpenKeyExW(key, L"x", 0, KEY_READ, nullptr)); }, "87"},
        {"longest name",
         [](HKEY key)
         {
             const std::vector<wchar_t> name(255, L'n');
             std::vector<wchar_t> text = name;
             text.push_back(0);
             return Joined({Make(key, text.data()), OpenStatus(key, text.data())});
         },
         "0 0"},
        {"too long a name",
         [](HKEY key)
         {
             std::vector<wchar_t> text(256, L'n');
             text.push_back(0);
             return std::to_string(Make(key, text.data()));
         },
         "87", "0"},
        {"simply, by null",
         [](HKEY key)
         {
             HKEY opened = nullptr;
             const LONG status = RegOpenKeyW(key, nullptr, &opened);
             return Joined({status, std::string(opened == key ? "same" : "other")});
         },
         "0 same"},
        {"simply",
         [](HKEY key)
         {
             Make(key, L"Child");
             HKEY opened = nullptr;
             const LONG status = RegOpenKeyW(key, L"child", &opened);
             const LONG written = SetText(opened, L"v", L"x");
             RegCloseKey(opened);
             return Joined({status, written});
         },
         "0 0"},
        {"the default root of a user is his own",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             const OpenKey again(HKEY_CURRENT_USER, kScratch, KEY_READ);
             return GetText(again.Get(), L"v");
         },
         "x"},
    };
    Check(cases, m_key);
}

std::string CreateStatus(HKEY key, const wchar_t* subKey)
{
    DWORD disposition = kUntouched;
    const std::string status = std::to_string(Make(key, subKey, &disposition));
    return Joined({status, Number(disposition)});
}

TEST_F(RegistryConformance, Creating)
{
    const Case cases[] = {
        {"new and old",
         [](HKEY key) {
             return Joined({CreateStatus(key, L"a"), CreateStatus(key, L"A")});
         },
         "0 1 0 2"},
        {"with all on the way",
         [](HKEY key) {
             return Joined({CreateStatus(key, L"a\\b\\c"), CreateStatus(key, L"a\\b")});
         },
         "0 1 0 2"},
        {"backslash at the end",
         [](HKEY key) {
             return Joined({CreateStatus(key, L"a\\"), OpenStatus(key, L"a")});
         },
         "0 1 0"},
        {"nothing new", [](HKEY key) { return CreateStatus(key, L""); }, "0 2", "0 1"},
        {"spelled as created",
         [](HKEY key)
         {
             Make(key, L"AbC");
             Make(key, L"aBc");
             wchar_t name[8] = {};
             RegEnumKeyW(key, 0, name, 8);
             return Narrow(name, 3);
         },
         "AbC"},
        {"the handle has the access asked for",
         [](HKEY key)
         {
             HKEY opened = nullptr;
             RegCreateKeyExW(key, L"a", 0, nullptr, 0, KEY_READ, nullptr, &opened, nullptr);
             const LONG status = SetText(opened, L"v", L"x");
             RegCloseKey(opened);
             return std::to_string(status);
         },
         "5"},
    };
    Check(cases, m_key);
}

// What a handle may do depends on the access that was asked for at opening, but the making and deleting of
// subkeys doesn't.
TEST_F(RegistryConformance, AccessRights)
{
    struct Row
    {
        REGSAM access;
        std::string
            expected; ///< query, enumerate values, info, set, delete value, enumerate keys, create, delete
    };
    const Row rows[] = {
        {KEY_ALL_ACCESS, "0 0 0 0 0 0 0 0"},     {KEY_READ, "0 0 0 5 5 0 0 0"},
        {KEY_WRITE, "5 5 5 0 0 5 0 0"},          {KEY_QUERY_VALUE, "0 0 0 5 5 5 0 0"},
        {KEY_SET_VALUE, "5 5 5 0 0 5 0 0"},      {KEY_ENUMERATE_SUB_KEYS, "5 5 5 5 5 0 0 0"},
        {KEY_CREATE_SUB_KEY, "5 5 5 5 5 5 0 0"}, {GENERIC_READ, "0 0 0 5 5 0 0 0"},
        {GENERIC_WRITE, "5 5 5 0 0 5 0 0"},      {GENERIC_ALL, "0 0 0 0 0 0 0 0"},
    };
    for (const Row& row : rows)
    {
        Make(m_key, L"Child\\Grand");
        const OpenKey child(m_key, L"Child", row.access);
        ASSERT_EQ(ERROR_SUCCESS, child.Status());
        SetText(OpenKey(m_key, L"Child").Get(), L"v", L"x");
        wchar_t name[16];
        DWORD length = 16;
        const LONG statuses[] = {
            RegQueryValueExW(child.Get(), L"v", nullptr, nullptr, nullptr, nullptr),
            RegEnumValueW(child.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr),
            // Wine wants no right for this one.
            IsWine() && (row.access & (KEY_QUERY_VALUE | GENERIC_READ | GENERIC_ALL)) == 0
                ? 5
                : RegQueryInfoKeyW(child.Get(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                   nullptr, nullptr, nullptr, nullptr),
            SetText(child.Get(), L"v", L"y"),
            RegDeleteValueW(child.Get(), L"v"),
            RegEnumKeyW(child.Get(), 0, name, 16),
            Make(child.Get(), L"New"),
            RegDeleteKeyW(child.Get(), L"Grand"),
        };
        std::string shown;
        for (const LONG status : statuses)
        {
            shown += (shown.empty() ? "" : " ") + std::to_string(status);
        }
        EXPECT_EQ(row.expected, shown) << std::hex << row.access;
    }
}

std::string EnumerateKeys(HKEY key)
{
    std::string names;
    for (DWORD index = 0;; ++index)
    {
        wchar_t name[64];
        DWORD length = 64;
        const LONG status = RegEnumKeyExW(key, index, name, &length, nullptr, nullptr, nullptr, nullptr);
        if (status != ERROR_SUCCESS)
        {
            return names + std::to_string(status);
        }
        names += Narrow(name, length) + ' ';
    }
}

TEST_F(RegistryConformance, Enumerating)
{
    const Case cases[] = {
        {"nothing", [](HKEY key) { return EnumerateKeys(key); }, "259"},
        {"in the order of names",
         [](HKEY key)
         {
             for (const wchar_t* const name : {L"b", L"10", L"A", L"2", L"a_", L"aB", L"C"})
             {
                 Make(key, name);
             }
             return EnumerateKeys(key);
         },
         "10 2 A aB a_ b C 259", "10 2 A a_ aB b C 259"},
        {"values are no keys",
         [](HKEY key)
         {
             SetText(key, L"v", L"x");
             Make(key, L"k");
             return EnumerateKeys(key);
         },
         "k 259"},
        {"simply",
         [](HKEY key)
         {
             Make(key, L"abc");
             wchar_t name[8] = {};
             return Joined({RegEnumKeyW(key, 0, name, 4), Narrow(name, 3), RegEnumKeyW(key, 0, name, 3),
                            RegEnumKeyW(key, 1, name, 8)});
         },
         "0 abc 234 259"},
        {"no room for the name",
         [](HKEY key)
         {
             Make(key, L"abc");
             wchar_t name[8] = {};
             DWORD length = 3;
             return std::to_string(RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr));
         },
         "234"},
        {"just room for it",
         [](HKEY key)
         {
             Make(key, L"abc");
             wchar_t name[8] = {};
             DWORD length = 4;
             return Joined(
                 {RegEnumKeyExW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr), Number(length)});
         },
         "0 3"},
        {"class and time",
         [](HKEY key)
         {
             Make(key, L"abc");
             wchar_t name[8] = {};
             wchar_t keyClass[8] = {L'#'};
             DWORD length = 8;
             DWORD classLength = 8;
             FILETIME time = {};
             const LONG status = RegEnumKeyExW(key, 0, name, &length, nullptr, keyClass, &classLength, &time);
             return Joined({status, Number(classLength), std::string(keyClass[0] == 0 ? "empty" : "text"),
                            std::string(time.dwHighDateTime != 0 ? "time" : "")});
         },
         "0 0 empty time"},
        {"values with type and data",
         [](HKEY key)
         {
             SetText(key, L"val", L"xy");
             wchar_t name[8] = {};
             BYTE data[8] = {};
             DWORD length = 8;
             DWORD size = 8;
             DWORD type = 0;
             const LONG status = RegEnumValueW(key, 0, name, &length, nullptr, &type, data, &size);
             return Joined({status, Narrow(name, length), Number(type), Number(size),
                            std::string(1, static_cast<char>(data[2]))});
         },
         "0 val 1 6 y"},
        {"behind the last value",
         [](HKEY key)
         {
             SetText(key, L"val", L"xy");
             wchar_t name[8];
             DWORD length = 8;
             return std::to_string(RegEnumValueW(key, 1, name, &length, nullptr, nullptr, nullptr, nullptr));
         },
         "259"},
        {"no room for a value's name",
         [](HKEY key)
         {
             SetText(key, L"val", L"xy");
             wchar_t name[8];
             DWORD length = 3;
             return std::to_string(RegEnumValueW(key, 0, name, &length, nullptr, nullptr, nullptr, nullptr));
         },
         "234"},
        {"no room for its data",
         [](HKEY key)
         {
             SetText(key, L"val", L"xy");
             wchar_t name[8];
             BYTE data[8];
             DWORD length = 8;
             DWORD size = 5;
             const LONG status = RegEnumValueW(key, 0, name, &length, nullptr, nullptr, data, &size);
             return Joined({status, Number(size)});
         },
         "234 6"},
        {"sums",
         [](HKEY key)
         {
             Make(key, L"abc");
             Make(key, L"abcde");
             SetText(key, L"val", L"xy");
             SetText(key, L"v", L"xyz");
             DWORD numbers[5];
             const LONG status =
                 RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &numbers[0], &numbers[1], nullptr,
                                  &numbers[2], &numbers[3], &numbers[4], nullptr, nullptr);
             std::string shown = std::to_string(status);
             for (const DWORD number : numbers)
             {
                 shown += ' ' + std::to_string(number);
             }
             return shown;
         },
         "0 2 5 2 3 8"},
    };
    Check(cases, m_key);
}

TEST_F(RegistryConformance, Deleting)
{
    const Case cases[] = {
        {"a key",
         [](HKEY key)
         {
             Make(key, L"Child");
             return Joined({RegDeleteKeyW(key, L"cHILD"), OpenStatus(key, L"Child")});
         },
         "0 2"},
        {"with its values",
         [](HKEY key)
         {
             Make(key, L"Child");
             SetText(OpenKey(key, L"Child").Get(), L"v", L"x");
             const LONG status = RegDeleteKeyW(key, L"Child\\");
             Make(key, L"Child");
             return Joined({status, GetText(OpenKey(key, L"Child").Get(), L"v")});
         },
         "0 2"},
        {"a key with subkeys",
         [](HKEY key)
         {
             Make(key, L"Child\\Grand");
             return Joined({RegDeleteKeyW(key, L"Child"), OpenStatus(key, L"Child\\Grand")});
         },
         "5 0"},
        {"a path",
         [](HKEY key)
         {
             Make(key, L"Child\\Grand");
             return Joined({RegDeleteKeyW(key, L"Child\\Grand"), OpenStatus(key, L"Child")});
         },
         "0 0"},
        {"a missing key", [](HKEY key) { return std::to_string(RegDeleteKeyW(key, L"Child")); }, "2"},
        {"no name", [](HKEY key) { return std::to_string(RegDeleteKeyW(key, nullptr)); }, "87"},
        {"itself, by the empty name",
         [](HKEY key)
         {
             Make(key, L"Child");
             const OpenKey child(key, L"Child");
             return Joined({RegDeleteKeyW(child.Get(), L""), OpenStatus(key, L"Child")});
         },
         "0 2"},
        {"what is open is deleted, its handle remains",
         [](HKEY key)
         {
             Make(key, L"Child");
             const OpenKey child(key, L"Child");
             const LONG deleted = RegDeleteKeyW(key, L"Child");
             wchar_t name[8];
             DWORD length = 8;
             std::string shown = std::to_string(deleted);
             for (const LONG status :
                  {SetText(child.Get(), L"v", L"x"), Make(child.Get(), L"Grand"),
                   RegQueryValueExW(child.Get(), L"v", nullptr, nullptr, nullptr, nullptr),
                   RegEnumKeyW(child.Get(), 0, name, 8), RegDeleteValueW(child.Get(), L"v"),
                   RegEnumValueW(child.Get(), 0, name, &length, nullptr, nullptr, nullptr, nullptr)})
             {
                 shown += ' ' + std::to_string(status);
             }
             return shown;
         },
         "0 1018 1018 1018 1018 1018 1018"},
        {"also when there is a new one of that name",
         [](HKEY key)
         {
             Make(key, L"Child");
             const OpenKey child(key, L"Child");
             RegDeleteKeyW(key, L"Child");
             Make(key, L"Child");
             return std::to_string(SetText(child.Get(), L"v", L"x"));
         },
         "1018"},
        {"a value",
         [](HKEY key)
         {
             SetText(key, L"Val", L"x");
             return Joined({RegDeleteValueW(key, L"vAL"), RegDeleteValueW(key, L"Val")});
         },
         "0 2"},
        {"the default value",
         [](HKEY key)
         {
             SetText(key, nullptr, L"x");
             return Joined({RegDeleteValueW(key, nullptr), RegDeleteValueW(key, L"")});
         },
         "0 2"},
    };
    Check(cases, m_key);
}

TEST_F(RegistryConformance, Handles)
{
    const Case cases[] = {
        {"null",
         [](HKEY) {
             return Joined({RegCloseKey(nullptr), OpenStatus(nullptr, L"x")});
         },
         "6 6"},
        {"closed twice",
         [](HKEY key)
         {
             HKEY opened = nullptr;
             RegOpenKeyExW(key, nullptr, 0, KEY_READ, &opened);
             return Joined({RegCloseKey(opened), RegCloseKey(opened)});
         },
         "0 6"},
        {"used after closing",
         [](HKEY key)
         {
             HKEY opened = nullptr;
             RegOpenKeyExW(key, nullptr, 0, KEY_ALL_ACCESS, &opened);
             RegCloseKey(opened);
             return Joined({SetText(opened, L"v", L"x"), GetText(opened, L"v"), OpenStatus(opened, L"x"),
                            RegDeleteKeyW(opened, L"x"), RegDeleteValueW(opened, L"x")});
         },
         "6 6 6 6 6"},
        {"a handle of another kind",
         [](HKEY)
         {
             const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
             SetLastError(kLastError);
             const std::string shown = OpenStatus(static_cast<HKEY>(event), L"x");
             CloseHandle(event);
             return shown;
         },
         "6"},
        {"a predefined key can be closed",
         [](HKEY) { return std::to_string(RegCloseKey(HKEY_LOCAL_MACHINE)); }, "0"},
    };
    Check(cases, m_key);
}

} // namespace
