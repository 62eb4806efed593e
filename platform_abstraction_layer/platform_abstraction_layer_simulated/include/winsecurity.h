// include/winsecurity.h
//
// advapi32: accounts, security identifiers, tokens, security descriptors.
#pragma once

#include <winnt.h>

using PSID = void*;
using PSECURITY_DESCRIPTOR = void*;

#define SID_REVISION 1
#define SID_MAX_SUB_AUTHORITIES 15
#define SECURITY_DESCRIPTOR_REVISION 1
#define SE_DACL_PRESENT 0x0004
#define SE_DACL_DEFAULTED 0x0008

#define TOKEN_ADJUST_PRIVILEGES 0x0020
#define TOKEN_QUERY 0x0008
#define SE_PRIVILEGE_ENABLED_BY_DEFAULT 0x00000001L
#define SE_PRIVILEGE_ENABLED 0x00000002L
#define SE_PRIVILEGE_REMOVED 0x00000004L

#define SE_BACKUP_NAME L"SeBackupPrivilege"
#define SE_RESTORE_NAME L"SeRestorePrivilege"

#define ANYSIZE_ARRAY 1

enum SID_NAME_USE
{
    SidTypeUser = 1,
    SidTypeWellKnownGroup = 5,
    SidTypeUnknown = 8
};
using PSID_NAME_USE = SID_NAME_USE*;

struct SID_IDENTIFIER_AUTHORITY
{
    BYTE Value[6]; // the highest byte first
};

/// 8 bytes and 4 for each sub-authority.
struct SID
{
    BYTE Revision;
    BYTE SubAuthorityCount;
    SID_IDENTIFIER_AUTHORITY IdentifierAuthority;
    DWORD SubAuthority[ANYSIZE_ARRAY];
};
static_assert(sizeof(SID) == 12);

struct LUID
{
    DWORD LowPart;
    LONG HighPart;
};
using PLUID = LUID*;
static_assert(sizeof(LUID) == 8);

struct LUID_AND_ATTRIBUTES
{
    LUID Luid;
    DWORD Attributes;
};
static_assert(sizeof(LUID_AND_ATTRIBUTES) == 12);

struct TOKEN_PRIVILEGES
{
    DWORD PrivilegeCount;
    LUID_AND_ATTRIBUTES Privileges[ANYSIZE_ARRAY];
};
using PTOKEN_PRIVILEGES = TOKEN_PRIVILEGES*;
static_assert(sizeof(TOKEN_PRIVILEGES) == 16);

struct ACL
{
    BYTE AclRevision;
    BYTE Sbz1;
    WORD AclSize;
    WORD AceCount;
    WORD Sbz2;
};
using PACL = ACL*;
static_assert(sizeof(ACL) == 8);

using SECURITY_DESCRIPTOR_CONTROL = WORD;
struct SECURITY_DESCRIPTOR
{
    BYTE Revision;
    BYTE Sbz1;
    SECURITY_DESCRIPTOR_CONTROL Control;
    PSID Owner;
    PSID Group;
    PACL Sacl;
    PACL Dacl;
};
static_assert(sizeof(void*) != 4 || sizeof(SECURITY_DESCRIPTOR) == 20);

/// The account's SID and the name of its domain. `sidSize` (bytes) and `domainSize` (characters with the
/// terminator) come in as the room; ERROR_INSUFFICIENT_BUFFER, with the sizes needed, when either is too
/// small. ERROR_NONE_MAPPED when nobody has that name. A null `system` means this machine.
SIM_API BOOL WINAPI LookupAccountNameW(LPCWSTR system, LPCWSTR account, PSID sid, LPDWORD sidSize,
                                       LPWSTR domain, LPDWORD domainSize, PSID_NAME_USE use);

/// The name of the account that the process runs as. `size` is in characters with the terminator.
SIM_API BOOL WINAPI GetUserNameW(LPWSTR name, LPDWORD size);

/// The access token of a process; this process's alone can be had here. Closed with CloseHandle.
SIM_API BOOL WINAPI OpenProcessToken(HANDLE process, DWORD access, PHANDLE token);

/// The number of a privilege, ERROR_NO_SUCH_PRIVILEGE when there is none of that name.
SIM_API BOOL WINAPI LookupPrivilegeValueW(LPCWSTR system, LPCWSTR name, PLUID luid);

/// Switches privileges on and off. TRUE with the last error ERROR_NOT_ALL_ASSIGNED when the token lacks one
/// of them, and with ERROR_SUCCESS when all were switched. `previous` takes those that changed.
SIM_API BOOL WINAPI AdjustTokenPrivileges(HANDLE token, BOOL disableAll, PTOKEN_PRIVILEGES wanted,
                                          DWORD previousSize, PTOKEN_PRIVILEGES previous, PDWORD neededSize);

SIM_API BOOL WINAPI InitializeSecurityDescriptor(PSECURITY_DESCRIPTOR descriptor, DWORD revision);

/// A null `dacl` that is present lets everybody in.
SIM_API BOOL WINAPI SetSecurityDescriptorDacl(PSECURITY_DESCRIPTOR descriptor, BOOL present, PACL dacl,
                                              BOOL defaulted);
