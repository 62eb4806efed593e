// include/windef.h
//
// The basic types of Windows with their documented widths, and the words that stand in declarations.
// Natively handles are as wide as a pointer; everything that the documentation calls 32 bits has 32 bits.
// It compiles as C too.
#pragma once

#include <assert.h>
#include <stddef.h>
#include <stdint.h>
#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#endif

// Calling conventions have one form natively.
#define WINAPI
#define CALLBACK
#define STDMETHODCALLTYPE
#define __stdcall
#define __cdecl

// Export and import are both plain visibility.
#define SIM_DECLSPEC_dllexport __attribute__((visibility("default")))
#define SIM_DECLSPEC_dllimport __attribute__((visibility("default")))
#define __declspec(word) SIM_DECLSPEC_##word

/// Marks the functions that the simulated platform exports.
#define SIM_API extern "C" __attribute__((visibility("default")))

static_assert(sizeof(wchar_t) == 2, "build with -fshort-wchar: wchar_t has 16 bits on Windows");

typedef int BOOL;
typedef uint8_t BYTE;
typedef uint8_t UCHAR;
typedef uint8_t BOOLEAN;
typedef uint16_t WORD;
typedef uint16_t USHORT;
typedef int INT;
typedef unsigned int UINT;
typedef int32_t LONG;
typedef uint32_t ULONG;
typedef uint32_t DWORD;
typedef uint64_t ULONGLONG;
typedef wchar_t WCHAR;
typedef int32_t HRESULT;
typedef int32_t LSTATUS;
typedef int32_t NTSTATUS;
typedef intptr_t INT_PTR;
typedef uintptr_t UINT_PTR;
typedef intptr_t LONG_PTR;
typedef uintptr_t ULONG_PTR;
typedef uintptr_t DWORD_PTR;
typedef size_t SIZE_T;
typedef UINT_PTR WPARAM;
typedef LONG_PTR LPARAM;
typedef LONG_PTR LRESULT;
typedef DWORD REGSAM;
#define __int64 long long

typedef void* PVOID;
typedef void* LPVOID;
typedef const void* LPCVOID;
typedef BYTE* PBYTE;
typedef BYTE* LPBYTE;
typedef UCHAR* PUCHAR;
typedef BOOL* LPBOOL;
typedef LONG* LPLONG;
typedef ULONG* PULONG;
typedef DWORD* PDWORD;
typedef DWORD* LPDWORD;
typedef DWORD_PTR* PDWORD_PTR;
typedef UINT* PUINT;
typedef char* LPSTR;
typedef const char* LPCSTR;
typedef wchar_t* LPWSTR;
typedef wchar_t* PWSTR;
typedef const wchar_t* LPCWSTR;
typedef const wchar_t* PCWSTR;
typedef const char* LPCCH;
typedef const wchar_t* LPCWCH;

typedef void* HANDLE;
typedef HANDLE* PHANDLE;
typedef void* HLOCAL;

// NOLINTBEGIN(bugprone-macro-parentheses): the argument is a name to be declared.
#define SIM_DECLARE_HANDLE(name)                                                                             \
    typedef struct name##__                                                                                  \
    {                                                                                                        \
        int unused;                                                                                          \
    } * name
// NOLINTEND(bugprone-macro-parentheses)
SIM_DECLARE_HANDLE(HKEY);
SIM_DECLARE_HANDLE(HINSTANCE);
SIM_DECLARE_HANDLE(HWND);
SIM_DECLARE_HANDLE(HICON);
typedef HINSTANCE HMODULE;
typedef HICON HCURSOR;
typedef HKEY* PHKEY;

// Callers of GetProcAddress cast its result to the exact type.
typedef INT_PTR(WINAPI* FARPROC)();

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#define MAX_PATH 260

/// Tenths of microseconds since the year 1601.
typedef struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
} FILETIME;
typedef FILETIME* PFILETIME;

typedef struct GUID
{
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
} GUID;
static_assert(sizeof(GUID) == 16, "as documented");
typedef GUID _GUID;
typedef GUID IID;
typedef GUID CLSID;
typedef CLSID* LPCLSID;

#ifdef __cplusplus

using REFIID = const IID&;
using REFCLSID = const CLSID&;

constexpr WORD LOWORD(DWORD_PTR value)
{
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(DWORD_PTR value)
{
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr BYTE LOBYTE(DWORD_PTR value)
{
    return static_cast<BYTE>(value & 0xFF);
}
constexpr BYTE HIBYTE(DWORD_PTR value)
{
    return static_cast<BYTE>((value >> 8) & 0xFF);
}
#define MAKEINTRESOURCEW(number) (reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(number))))
#define MAKEINTRESOURCEA(number) (reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(number))))

#endif
