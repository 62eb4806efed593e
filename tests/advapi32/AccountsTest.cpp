// tests/advapi32/AccountsTest.cpp
//
// Accounts and their SIDs, tokens and their privileges, security descriptors.

#include "kernel32/OwnedHandle.h"
#include "support/LastError.h"
#include "support/NotebookTest.h"
#include "support/WideText.h"

#include "notebook/Machine.h"

#include <windows.h>

#include <cstring>
#include <sddl.h>

using namespace simulated;

namespace
{

using AccountsTest = NotebookTest;

/// The SID as text, or the error.
std::string Shown(PSID sid)
{
    LPWSTR text = nullptr;
    if (!ConvertSidToStringSidW(sid, &text))
    {
        return "error " + std::to_string(GetLastError());
    }
    std::string shown = Narrow(text);
    EXPECT_EQ(nullptr, LocalFree(text));
    return shown;
}

TEST_F(AccountsTest, NamesLeadToSids)
{
    // The domain and the SID, or the error.
    const std::pair<const char*, const char*> rows[] = {
        {"alice", "NOTEBOOK S-1-5-21-1220945662-1202660629-1417001333-1003"},
        {"CAROL", "NOTEBOOK S-1-5-21-1220945662-1202660629-1417001333-1005"},
        {"notebook\\alice", "NOTEBOOK S-1-5-21-1220945662-1202660629-1417001333-1003"},
        {"System", "NT AUTHORITY S-1-5-18"},
        {"Local Service", "NT AUTHORITY S-1-5-19"},
        {"elsewhere\\alice", "1332"},
        {"dave", "1332"},
        {"", "1332"},
    };
    for (const auto& [name, expected] : rows)
    {
        BYTE sid[100];
        wchar_t domain[100];
        DWORD sidSize = sizeof sid;
        DWORD domainSize = 100;
        SID_NAME_USE use = SidTypeUnknown;
        const BOOL found =
            LookupAccountNameW(nullptr, Wide(name).data(), sid, &sidSize, domain, &domainSize, &use);
        EXPECT_EQ(expected, found ? Narrow(domain) + ' ' + Shown(sid) : std::to_string(GetLastError()));
        EXPECT_TRUE(!found || Narrow(domain).size() == domainSize);
    }
}

TEST_F(AccountsTest, BuffersThatAreTooSmallLearnTheirSize)
{
    BYTE sid[100];
    wchar_t domain[100];
    SID_NAME_USE use = SidTypeUnknown;
    for (const auto& [sidRoom, domainRoom] : {std::pair{27U, 9U}, {28U, 8U}, {0U, 0U}})
    {
        DWORD sidSize = sidRoom;
        DWORD domainSize = domainRoom;
        EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER,
                  ErrorOf(LookupAccountNameW(nullptr, L"alice", sid, &sidSize, domain, &domainSize, &use)));
        EXPECT_EQ(28U, sidSize);
        EXPECT_EQ(9U, domainSize);
    }
    DWORD sidSize = 28;
    DWORD domainSize = 9;
    EXPECT_TRUE(LookupAccountNameW(nullptr, L"alice", sid, &sidSize, domain, &domainSize, &use));
    EXPECT_EQ(SidTypeUser, use);
}

TEST_F(AccountsTest, SidsAsText)
{
    const std::pair<const char*, const char*> rows[] = {
        {"S-1-5-18", "S-1-5-18"},
        {"s-1-5-18", "S-1-5-18"},
        {"S-1-0x5-0x12", "S-1-5-18"},
        {"S-1-5-4294967295", "S-1-5-4294967295"},
        {"S-1-4294967296-1", "S-1-0x000100000000-1"},
        {"S-1-0-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15", "S-1-0-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15"},
    };
    for (const auto& [text, expected] : rows)
    {
        PSID sid = nullptr;
        EXPECT_TRUE(ConvertStringSidToSidW(Wide(text).data(), &sid));
        EXPECT_EQ(expected, Shown(sid));
        LocalFree(sid);
    }
    for (const char* const text :
         {"S-1-0-1-2-3-4-5-6-7-8-9-10-11-12-13-14-15-16", "S-1-5", "S-1-5-", "S-2-5-18", "S-1-5-18x",
          "S-1-5-4294967296", "S-1-281474976710656-1", "", "S-1--5"})
    {
        PSID sid = nullptr;
        EXPECT_FALSE(ConvertStringSidToSidW(Wide(text).data(), &sid)) << text;
    }
    BYTE broken[SECURITY_MAX_SID_SIZE] = {SID_REVISION, SID_MAX_SUB_AUTHORITIES + 1};
    EXPECT_EQ("error " + std::to_string(ERROR_INVALID_SID), Shown(broken));
}

TEST_F(AccountsTest, TheUserNameIsTheRunningAccount)
{
    Machine::RunAs("bob");
    wchar_t name[8] = {};
    DWORD size = 3;
    EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER, ErrorOf(GetUserNameW(name, &size)));
    EXPECT_EQ(4U, size);
    EXPECT_TRUE(GetUserNameW(name, &size));
    EXPECT_EQ("bob", Narrow(name));
}

OwnedHandle OpenToken(DWORD access)
{
    HANDLE token = nullptr;
    EXPECT_TRUE(OpenProcessToken(GetCurrentProcess(), access, &token));
    return OwnedHandle(token);
}

TOKEN_PRIVILEGES Enabled(const wchar_t* privilege)
{
    TOKEN_PRIVILEGES wanted{1, {{{}, SE_PRIVILEGE_ENABLED}}};
    EXPECT_TRUE(LookupPrivilegeValueW(nullptr, privilege, &wanted.Privileges[0].Luid));
    return wanted;
}

TEST_F(AccountsTest, PrivilegesAreSwitchedAndTheirOldStateIsTold)
{
    const OwnedHandle token = OpenToken(TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY);
    TOKEN_PRIVILEGES wanted = Enabled(SE_BACKUP_NAME);
    TOKEN_PRIVILEGES previous{};
    DWORD needed = 0;
    SetLastError(4711);
    EXPECT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &wanted, sizeof previous, &previous, &needed));
    EXPECT_EQ(ERROR_SUCCESS, GetLastError());
    EXPECT_EQ(1U, previous.PrivilegeCount);
    EXPECT_EQ(0U, previous.Privileges[0].Attributes);
    EXPECT_EQ(sizeof previous, needed);
    // It is on now, so nothing changes.
    EXPECT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &wanted, sizeof previous, &previous, &needed));
    EXPECT_EQ(0U, previous.PrivilegeCount);
    // And off again with all others.
    EXPECT_EQ(ERROR_INSUFFICIENT_BUFFER,
              ErrorOf(AdjustTokenPrivileges(token.get(), TRUE, nullptr, 4, &previous, &needed)));
    EXPECT_TRUE(AdjustTokenPrivileges(token.get(), TRUE, nullptr, 0, nullptr, nullptr));
    wanted.Privileges[0].Attributes = 0;
    EXPECT_TRUE(AdjustTokenPrivileges(token.get(), FALSE, &wanted, sizeof previous, &previous, &needed));
    EXPECT_EQ(0U, previous.PrivilegeCount);
}

TEST_F(AccountsTest, PrivilegesThatCannotBeSwitched)
{
    Machine::RunAs("NETWORK SERVICE");
    TOKEN_PRIVILEGES wanted = Enabled(SE_RESTORE_NAME);
    const auto adjust = [&](const OwnedHandle& token)
    { return AdjustTokenPrivileges(token.get(), FALSE, &wanted, 0, nullptr, nullptr); };
    EXPECT_TRUE(adjust(OpenToken(TOKEN_ADJUST_PRIVILEGES)));
    EXPECT_EQ(ERROR_NOT_ALL_ASSIGNED, GetLastError()) << "what the token lacks is told beside success";
    EXPECT_EQ(ERROR_ACCESS_DENIED, ErrorOf(adjust(OpenToken(TOKEN_QUERY))));
    EXPECT_EQ(ERROR_INVALID_HANDLE, ErrorOf(adjust(nullptr)));
    LUID luid{};
    EXPECT_EQ(ERROR_NO_SUCH_PRIVILEGE, ErrorOf(LookupPrivilegeValueW(nullptr, L"SeSuch", &luid)));
}

TEST(SecurityDescriptorTest, AnEmptyListOfRightsLetsEverybodyIn)
{
    SECURITY_DESCRIPTOR descriptor;
    std::memset(&descriptor, 0xEE, sizeof descriptor);
    EXPECT_EQ(ERROR_UNKNOWN_REVISION, ErrorOf(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE)));
    EXPECT_FALSE(InitializeSecurityDescriptor(&descriptor, 2));
    ASSERT_TRUE(InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION));
    EXPECT_EQ(0, descriptor.Control);
    ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE));
    EXPECT_EQ(SE_DACL_PRESENT, descriptor.Control);
    EXPECT_EQ(nullptr, descriptor.Dacl);
    ASSERT_TRUE(SetSecurityDescriptorDacl(&descriptor, FALSE, nullptr, FALSE));
    EXPECT_EQ(0, descriptor.Control);
}

} // namespace
