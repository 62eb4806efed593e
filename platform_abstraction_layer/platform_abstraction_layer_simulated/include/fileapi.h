// fileapi.h
//
// kernel32: files and folders.
#pragma once

#include <winnt.h>

struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
struct OVERLAPPED;
using LPOVERLAPPED = OVERLAPPED*;

#define CREATE_NEW 1
#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3
#define OPEN_ALWAYS 4
#define TRUNCATE_EXISTING 5

#define FILE_ATTRIBUTE_HIDDEN 0x00000002
#define FILE_ATTRIBUTE_SYSTEM 0x00000004
#define FILE_ATTRIBUTE_ARCHIVE 0x00000020
#define FILE_FLAG_SEQUENTIAL_SCAN 0x08000000
#define FILE_FLAG_BACKUP_SEMANTICS 0x02000000
#define FILE_FLAG_WRITE_THROUGH 0x80000000U

#define FILE_READ_DATA 0x0001
#define FILE_WRITE_DATA 0x0002
#define FILE_APPEND_DATA 0x0004

#define FILE_BEGIN 0
#define FILE_CURRENT 1
#define FILE_END 2
#define INVALID_SET_FILE_POINTER 0xFFFFFFFFU
#define INVALID_FILE_SIZE 0xFFFFFFFFU

/// Opens a file, a folder (with FILE_FLAG_BACKUP_SEMANTICS) or a device.
SIM_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                                  DWORD disposition, DWORD flags, HANDLE templateFile);
SIM_API BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped);
SIM_API BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written,
                              LPOVERLAPPED overlapped);
SIM_API DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high);
SIM_API DWORD WINAPI SetFilePointer(HANDLE file, LONG distance, PLONG distanceHigh, DWORD method);
SIM_API BOOL WINAPI SetEndOfFile(HANDLE file);

SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path);
SIM_API BOOL WINAPI CopyFileW(LPCWSTR from, LPCWSTR to, BOOL failIfExists);
SIM_API BOOL WINAPI CreateDirectoryW(LPCWSTR path, LPSECURITY_ATTRIBUTES attributes);
SIM_API BOOL WINAPI RemoveDirectoryW(LPCWSTR path);

/// Knows FILE_ATTRIBUTE_READONLY and FILE_ATTRIBUTE_DIRECTORY; every other file is an ARCHIVE one.
SIM_API DWORD WINAPI GetFileAttributesW(LPCWSTR path);
SIM_API BOOL WINAPI SetFileAttributesW(LPCWSTR path, DWORD attributes);
