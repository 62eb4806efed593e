// tests/scheme/MissingFilesTest.cpp
//
// A root file that is missing, or one that names no file: each operation ends as if the file behind it
// couldn't be opened, and leaves everything as it is.

#include "scheme/SchemeTest.h"

namespace
{

class MissingFiles : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    /// Compares the results of `work` where the root names no file and where it is missing.
    void Expect(const std::vector<int>& results, const std::function<std::vector<int>()>& work)
    {
        for (const char* key : {"PowerScheme", "PowerSetting", "UserScheme"})
        {
            ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", key, ""));
        }
        ASSERT_TRUE(seeding::SetKey(kRoot, "ORVACfg", "SchemeSettings", ""));
        const auto bytes = [this]
        {
            return std::vector{seeding::ReadBytes(Values()), seeding::ReadBytes(Users()),
                               seeding::ReadBytes(Display("alice"))};
        };
        const auto before = bytes();
        EXPECT_EQ(results, work()) << "the root names no file";
        EXPECT_EQ(before, bytes());
        seeding::Remove(kRoot);
        EXPECT_EQ(results, work()) << "no root";
        EXPECT_EQ(before, bytes());
    }
};

using XpMissingFiles = MissingFiles;
using VistaMissingFiles = OnVista<MissingFiles>;

TEST_F(XpMissingFiles, CountAsFilesThatCantBeOpened)
{
    ASSERT_EQ(6, engine.AddPwrScheme(L"Mine", L"", 3, L"alice"));
    Run("set 6 ac Wifi = 1 -> 1");
    PWRSET set{};
    set.schemeID = 6;
    set.IfShow = 1;
    ASSERT_EQ(1, engine.SetPwrCfgVariable(set));
    Expect({-1, -1, -1, 1, 0, -1, -1, -1, 1, 0, -1, -1},
           [&]
           {
               PWRSET read = set;
               return std::vector<int>{
                   engine.GetPwrVariable(6, 1, L"Wifi"),
                   engine.SetPwrVariable(6, 1, L"Wifi", 0),
                   engine.GetPwrVariableOptCount(L"Wifi"),
                   engine.GetPwrVariableAll(read, 6),
                   static_cast<int>(read.IfShow),
                   engine.FindPwrScheme(L"Mine", L"alice"),
                   engine.AddtoUserList(L"alice"),
                   engine.AddtoUserScheme(L"x", L"alice", 9),
                   engine.FindPwrScheme(engine.AddPwrScheme(L"Mine", L"", 3, L"alice")),
                   engine.DeletePwrScheme(engine.GetPwrSchemeMaxIndex()),
                   engine.ClearCurrentUserSettings(),
                   engine.ClearPwrSchemes(),
               };
           });
    EXPECT_EQ(1, engine.FindPwrScheme(6)) << "orphaned by a clearing";
}

TEST_F(VistaMissingFiles, CountAsFilesThatCantBeOpened)
{
    GUID guid = kBalanced;
    Expect({-1, -1, 0, 0, -1, -1, 0},
           [&]
           {
               return std::vector<int>{
                   engine.GetPwrVariable(1, 1, L"DiskOffTimeOut"),
                   engine.GetActivePwrScheme(0),
                   engine.FindPwrScheme(1),
                   engine.SchemeIndexToGuid(1, &guid),
                   engine.SchemeGuidToIndex(&guid),
                   engine.GetPwrSchemeMaxIndex(),
                   engine.DeletePwrScheme(1),
               };
           });
}

} // namespace
