// tests/scheme/MissingFilesTest.cpp
//
// A root file that is missing, or one that names no file: each operation ends as if the file behind it
// couldn't be opened, and leaves everything as it is.

#include "scheme/SchemeTest.h"

#include <utility>

namespace
{

struct Row
{
    const char* operation;
    int result;
    std::function<int()> work;
};

class MissingFiles : public SchemeTest
{
protected:
    using SchemeTest::SchemeTest;

    void Expect(const std::vector<Row>& rows)
    {
        for (const char* key : {"PowerScheme", "UserScheme"})
        {
            ASSERT_TRUE(seeding::SetKey(Root(), "ORVLCfg", key, ""));
        }
        ASSERT_TRUE(seeding::SetKey(Root(), "ORVACfg", "SchemeSettings", ""));
        for (const char* root : {"names no file", "is missing"})
        {
            for (const Row& row : rows)
            {
                const auto before = Bytes();
                EXPECT_EQ(row.result, row.work()) << row.operation << ", the root " << root;
                EXPECT_EQ(before, Bytes()) << row.operation << ", the root " << root;
            }
            seeding::Remove(Root());
        }
    }

private:
    std::vector<std::optional<std::string>> Bytes() const
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
    ASSERT_EQ(1, engine.SetPwrVariable(6, 1, L"Wifi", 1));
    PWRSET set{};
    set.schemeID = 6;
    set.IfShow = 1;
    ASSERT_EQ(1, engine.SetPwrCfgVariable(set));
    Expect({
        {"GetPwrVariable", -1, [&] { return engine.GetPwrVariable(6, 1, L"Wifi"); }},
        {"GetPwrVariableAll", 0,
         [&]
         {
             engine.GetPwrVariableAll(set, 6);
             return static_cast<int>(std::exchange(set.IfShow, 1));
         }},
        {"FindPwrScheme", -1, [&] { return engine.FindPwrScheme(L"Mine", L"alice"); }},
        {"AddtoUserList", -1, [&] { return engine.AddtoUserList(L"alice"); }},
        {"AddtoUserScheme", -1, [&] { return engine.AddtoUserScheme(L"x", L"alice", 9); }},
        {"AddPwrScheme", 1,
         [&] { return engine.FindPwrScheme(engine.AddPwrScheme(L"Mine", L"", 3, L"alice")); }},
        {"DeletePwrScheme", 0, [&] { return engine.DeletePwrScheme(engine.GetPwrSchemeMaxIndex()); }},
        {"ClearCurrentUserSettings", -1, [&] { return engine.ClearCurrentUserSettings(); }},
        {"ClearPwrSchemes", -1, [&] { return engine.ClearPwrSchemes(); }},
    });
    EXPECT_EQ(1, engine.FindPwrScheme(6)) << "orphaned by a clearing";
}

TEST_F(VistaMissingFiles, CountAsFilesThatCantBeOpened)
{
    GUID guid = kBalanced;
    Expect({
        {"GetPwrVariable", -1, [&] { return engine.GetPwrVariable(1, 1, L"DiskOffTimeOut"); }},
        {"GetActivePwrScheme", -1, [&] { return engine.GetActivePwrScheme(0); }},
        {"FindPwrScheme", 0, [&] { return engine.FindPwrScheme(1); }},
        {"SchemeIndexToGuid", 0, [&] { return engine.SchemeIndexToGuid(1, &guid); }},
        {"SchemeGuidToIndex", -1, [&] { return engine.SchemeGuidToIndex(&guid); }},
        {"GetPwrSchemeMaxIndex", -1, [&] { return engine.GetPwrSchemeMaxIndex(); }},
        {"DeletePwrScheme", 0, [&] { return engine.DeletePwrScheme(1); }},
    });
}

} // namespace
