// include/fileapi.h
//
// kernel32: files and folders.
#pragma once

#include <winnt.h>

struct SECURITY_ATTRIBUTES;
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;
struct OVERLAPPED;
using LPOVERLAPPED = OVERLAPPED*;

#define CREATE_ALWAYS 2
#define OPEN_EXISTING 3

#define FILE_ATTRIBUTE_ARCHIVE 0x00000020

#define FILE_READ_DATA 0x0001
#define FILE_WRITE_DATA 0x0002
#define FILE_APPEND_DATA 0x0004

#define INVALID_FILE_SIZE 0xFFFFFFFFU

/// Opens a file or a device. Natively the only dispositions are CREATE_ALWAYS and OPEN_EXISTING.
SIM_API HANDLE WINAPI CreateFileW(LPCWSTR path, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES attributes,
                                  DWORD disposition, DWORD flags, HANDLE templateFile);
SIM_API BOOL WINAPI ReadFile(HANDLE file, LPVOID buffer, DWORD size, LPDWORD read, LPOVERLAPPED overlapped);
SIM_API BOOL WINAPI WriteFile(HANDLE file, LPCVOID buffer, DWORD size, LPDWORD written,
                              LPOVERLAPPED overlapped);
SIM_API DWORD WINAPI GetFileSize(HANDLE file, LPDWORD high);

SIM_API BOOL WINAPI DeleteFileW(LPCWSTR path);
SIM_API BOOL WINAPI RemoveDirectoryW(LPCWSTR path);

/// Knows FILE_ATTRIBUTE_READONLY and FILE_ATTRIBUTE_DIRECTORY; every other file is an ARCHIVE one.
SIM_API DWORD WINAPI GetFileAttributesW(LPCWSTR path);
