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

    /// Does `work` where the root names no file and where it is missing; it must leave all files alone.
    void Expect(const Work& work)
    {
        for (const char* key : {"PowerScheme", "PowerSetting", "UserScheme"})
        {
            ASSERT_TRUE(seeding::SetKey(kRoot, "ORVLCfg", key, ""));
        }
        ASSERT_TRUE(seeding::SetKey(kRoot, "ORVACfg", "SchemeSettings", ""));
        const auto before = Bytes();
        work();
        EXPECT_EQ(before, Bytes());
        seeding::Remove(kRoot);
        work();
        EXPECT_EQ(before, Bytes());
    }

private:
    static std::vector<std::optional<std::string>> Bytes()
    {
        return {seeding::ReadBytes(Values()), seeding::ReadBytes(Users()),
                seeding::ReadBytes(Display("alice"))};
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
    Expect(
        [&]
        {
            Run("get 6 ac Wifi -> -1; set 6 ac Wifi = 0 -> -1");
            EXPECT_EQ(-1, engine.GetPwrVariableOptCount(L"Wifi"));
            PWRSET read = set;
            EXPECT_EQ(1, engine.GetPwrVariableAll(read, 6));
            EXPECT_EQ(0, read.IfShow);
            EXPECT_EQ(-1, engine.FindPwrScheme(L"Mine", L"alice"));
            EXPECT_EQ(-1, engine.AddtoUserList(L"alice"));
            EXPECT_EQ(-1, engine.AddtoUserScheme(L"x", L"alice", 9));
            EXPECT_EQ(7, engine.AddPwrScheme(L"Mine", L"", 3, L"alice"));
            Run("find 7 -> 1; delete 7 -> 0; find 7 -> 0");
            EXPECT_EQ(-1, engine.ClearCurrentUserSettings());
            EXPECT_EQ(-1, engine.ClearPwrSchemes());
        });
    Run("find 6 -> 1"); // not orphaned by a clearing
}

TEST_F(VistaMissingFiles, CountAsFilesThatCantBeOpened)
{
    Expect(
        [&]
        {
            GUID guid = kBalanced;
            Run("get 1 ac DiskOffTimeOut -> -1; active -> -1; find 1 -> 0; next -> -1; delete 1 -> 0");
            EXPECT_EQ(0, engine.SchemeIndexToGuid(1, &guid));
            EXPECT_EQ(-1, engine.SchemeGuidToIndex(&guid));
        });
}

} // namespace
