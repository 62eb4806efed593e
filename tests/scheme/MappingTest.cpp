// tests/scheme/MappingTest.cpp
//
// The choice of the back end, and the mapping of a scheme index to the operating system's scheme and back.

#include "scheme/SchemeTest.h"

#include "control/RegistryEditor.h"

#include <gmock/gmock.h>

using namespace simulated;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

namespace
{

constexpr GUID kUnknown = {0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}};

constexpr const char* kUnknownText = "{01234567-89AB-CDEF-0123-456789ABCDEF}";

using XpMapping = SchemeTest;
using VistaMapping = OnVista<SchemeTest>;

TEST_F(XpMapping, MajorVersionSixAloneTakesTheVistaBackEnd)
{
    for (const auto& [major, minor, vista] :
         {std::tuple{5U, 1U, 0}, std::tuple{6U, 0U, 1}, std::tuple{6U, 1U, 1}, std::tuple{10U, 0U, 0}})
    {
        ASSERT_TRUE(Notebook::SetVersion(major, minor));
        const auto calls = CallsOf([&] { engine.Initialize(); });
        EXPECT_EQ(vista, engine.m_bVista) << major;
        // Version, library and eight functions.
        EXPECT_EQ(vista != 0 ? 10U : 1U, calls.size());
    }
}

// Without a function what needs it fails, whatever the others could do, and no row is taken for stale.
TEST_F(VistaMapping, AMissingFunctionFailsWhatNeedsIt)
{
    GUID own = kUnknown;
    GUID* copy = &own;
    ASSERT_EQ(0U, PowerDuplicateScheme(nullptr, &kBalanced, &copy));
    ASSERT_TRUE(Store(5, "GUID", kUnknownText));
    const std::tuple<std::string, int, std::function<int()>> rows[] = {
        {"PowerGetActiveScheme", -1, [&] { return engine.GetActivePwrScheme(0); }},
        {"PowerSetActiveScheme", -1, [&] { return engine.SetActivePwrScheme(2); }},
        {"PowerReadFriendlyName", 0, [&] { return engine.FindPwrScheme(1); }},
        {"PowerReadACValueIndex", -1, [&] { return engine.GetPwrVariable(1, 0, L"DiskOffTimeOut"); }},
        {"PowerReadDCValueIndex", -1, [&] { return engine.GetPwrVariable(1, 1, L"DiskOffTimeOut"); }},
        {"PowerWriteACValueIndex", -1, [&] { return engine.SetPwrVariable(1, 0, L"Wifi", 1); }},
        {"PowerWriteDCValueIndex", -1, [&] { return engine.SetPwrVariable(1, 1, L"Wifi", 1); }},
        {"PowerDeleteScheme", 0, [&] { return engine.DeletePwrScheme(5, L"alice"); }},
    };
    const auto before = seeding::ReadBytes(Values());
    for (const auto& [function, result, work] : rows)
    {
        ASSERT_TRUE(Notebook::SetModule("PowrProf.dll." + function, false));
        engine.Initialize();
        EXPECT_EQ(result, work()) << function;
        EXPECT_EQ(before, seeding::ReadBytes(Values())) << function;
        ASSERT_TRUE(Notebook::SetModule("PowrProf.dll." + function, true));
    }
    engine.Initialize();
    Run("delete 5 asUser -> 1");
    EXPECT_EQ(kAbsent, Stored(5, "GUID"));
}

TEST_F(XpMapping, SchemesAreTheSubkeysOfTheStores)
{
    const std::string own = "HKEY_CURRENT_USER\\Control Panel\\PowerCfg\\PowerPolicies\\";
    Run("find 5 -> 1; find 6 -> 0; next -> 5");
    ASSERT_TRUE(seeding::MakeKey(HKEY_LOCAL_MACHINE, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Controls "
                                                     "Folder\\PowerCfg\\PowerPolicies\\17"));
    Run("next -> 17; find 17 -> 0");
    // A name counts as the number that it begins with, and as 0 without one.
    ASSERT_TRUE(RegistryEditor::RemoveKey(own + '0'));
    Run("find 0 -> 0");
    ASSERT_TRUE(RegistryEditor::WriteNumber(own + "12x", "x", 0));
    Run("find 0 -> 0; find 12 -> 1");
    ASSERT_TRUE(RegistryEditor::WriteNumber(own + "x12", "x", 0));
    Run("find 0 -> 1");
}

TEST_F(VistaMapping, SchemesAreRowsAndHaveNoNames)
{
    GUID guid{};
    EXPECT_EQ(-1, engine.SchemeGuidToIndex(nullptr));
    EXPECT_EQ(0, engine.SchemeIndexToGuid(-1, &guid) + engine.SchemeIndexToGuid(1, nullptr));
    EXPECT_EQ(1, engine.SchemeIndexToGuid(1, &guid));
    EXPECT_EQ(BytesOf(kBalanced), BytesOf(guid));
    EXPECT_EQ(-1, engine.FindPwrScheme(L"Portable/Laptop"));
    EXPECT_EQ(-1, engine.SetPwrSchemeNameDesc(1, L"Mine", L""));
    Run("delete 0 -> 0; delete 2 -> 0");
    GUID saver{};
    ASSERT_EQ(1, engine.SchemeIndexToGuid(0, &saver));
    ASSERT_EQ(ERROR_SUCCESS, PowerSetActiveScheme(nullptr, &saver));
    Run("active 0 -> 0; delete 1 -> 0; find 1 -> 1");
}

TEST_F(VistaMapping, AStaleRowIsRemovedWithAllThatItHolds)
{
    ASSERT_TRUE(Store(2, "Wifi", "1"));
    ASSERT_TRUE(Store(2, "GUID", kUnknownText));
    EXPECT_EQ(-1, engine.GetPwrVariable(2, 1, L"Wifi"));
    EXPECT_EQ(kAbsent, Stored(2, "GUID"));
    EXPECT_EQ(kAbsent, Stored(2, "Wifi"));
    Run("next -> 3");
    Faults::Inject("PowerReadFriendlyName", 1, ERROR_MORE_DATA);
    Run("find 1 -> 1");
}

TEST_F(VistaMapping, TheSearchSkipsGapsAndEndsAtABrokenRow)
{
    const std::string text = Stored(1, "GUID");
    ASSERT_TRUE(Store(1, "GUID", ""));
    ASSERT_TRUE(Store(3, "GUID", text));
    // The row of "SchemeMaxIndex" itself is looked at, too.
    EXPECT_EQ(3, engine.SchemeGuidToIndex(&kBalanced));
    ASSERT_TRUE(Store(2, "GUID", "{broken}"));
    EXPECT_EQ(-1, engine.SchemeGuidToIndex(&kBalanced));
    GUID guid{};
    EXPECT_EQ(0, engine.SchemeIndexToGuid(2, &guid));
    EXPECT_EQ("{broken}", Stored(2, "GUID"));
}

TEST_F(VistaMapping, AnUnknownActiveSchemeGetsTheNextRow)
{
    GUID unknown = kUnknown;
    GUID* copy = &unknown;
    ASSERT_EQ(0U, PowerDuplicateScheme(nullptr, &kBalanced, &copy));
    ASSERT_EQ(0U, PowerSetActiveScheme(nullptr, copy));
    Faults::Inject("WritePrivateProfileStringW", 1, ERROR_ACCESS_DENIED);
    Run("active -> -1; next -> 3");
    Run("active -> 3; active -> 3; next -> 4");
    EXPECT_EQ("{01234567-89AB-cdef-0123-456789ABCDEF}", Stored(3, "GUID"));
}

// The active scheme's own row stands behind one that ends the search.
TEST_F(VistaMapping, ASearchThatEndsEarlyAddsOneRowOnly)
{
    const auto setNext = [](const char* row)
    { ASSERT_TRUE(seeding::SetKey(Values(), "Schemes", "SchemeMaxIndex", row)); };
    const std::string balanced = Stored(1, "GUID");
    ASSERT_TRUE(Store(0, "GUID", "{broken}"));
    Run("active -> 3; active -> 3; next -> 4");
    for (const char* none : {"-1", "-9", "2147483647"})
    {
        setNext(none);
        const auto before = seeding::ReadBytes(Values());
        EXPECT_EQ(-1, engine.GetActivePwrScheme(0)) << none;
        EXPECT_EQ(before, seeding::ReadBytes(Values())) << none;
    }
    ASSERT_TRUE(Store(2147483646, "GUID", balanced));
    Run("active -> 2147483646");

    // Before row 0 there is none.
    ASSERT_TRUE(seeding::SetKey(Values(), "Scheme 4294967295", "GUID", balanced));
    setNext("0");
    Run("active -> 0");
}

TEST_F(VistaMapping, GuidTextsAreReadAndNeedRoomForTheirTerminator)
{
    GUID read{};
    EXPECT_NE(0, engine.GuidFromString(seeding::Wide(kUnknownText).data(), &read));
    EXPECT_EQ(BytesOf(kUnknown), BytesOf(read));
    EXPECT_EQ(0, engine.GuidFromString(L"no", &read) + engine.GuidFromString(nullptr, &read) +
                     engine.GuidFromString(seeding::Wide(kUnknownText).data(), nullptr));
    wchar_t buffer[40] = L"untouched";
    GUID guid = kBalanced;
    ULONG room = 0;
    for (const auto& [size, wanted] : {std::pair{38U, 39U}, std::pair{0U, 39U}, std::pair{39U, 40U}})
    {
        room = size;
        EXPECT_EQ(0, engine.GuidIntoString(&guid, buffer, &room));
        EXPECT_EQ(wanted, room);
    }
    EXPECT_EQ(0,
              engine.GuidIntoString(nullptr, buffer, &room) + engine.GuidIntoString(&guid, buffer, nullptr));
    EXPECT_EQ("untouched", seeding::Utf8(buffer));
    EXPECT_EQ(1, engine.GuidIntoString(&guid, buffer, &room));
    EXPECT_EQ(" {381B4222-F694-41f0-9685-FF5BB260DF2E}", seeding::Utf8(buffer));
}

} // namespace
