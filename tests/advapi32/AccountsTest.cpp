// tests/advapi32/AccountsTest.cpp
//
// Accounts and their SIDs.

#include "support/NotebookTest.h"
#include "support/WideText.h"

#include <windows.h>

#include <sddl.h>

namespace
{

using AccountsTest = NotebookTest;

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
        LPWSTR text = nullptr;
        DWORD sidSize = sizeof sid;
        DWORD domainSize = 100;
        SID_NAME_USE use = SidTypeUnknown;
        const BOOL found =
            LookupAccountNameW(nullptr, Wide(name).data(), sid, &sidSize, domain, &domainSize, &use);
        EXPECT_EQ(expected, found && ConvertSidToStringSidW(sid, &text) ? Utf8(domain) + ' ' + Utf8(text)
                                                                        : std::to_string(GetLastError()));
        EXPECT_EQ(nullptr, LocalFree(text));
    }
}

} // namespace
