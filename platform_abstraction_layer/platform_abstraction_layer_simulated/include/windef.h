// windef.h
//
// The basic types of Windows with their documented widths, and the words that stand in declarations.
// Natively handles are as wide as a pointer; everything that the documentation calls 32 bits has 32 bits.
#pragma once

#include <cstddef>
#include <cstdint>

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

using BOOL = int;
using BYTE = std::uint8_t;
using UCHAR = std::uint8_t;
using BOOLEAN = std::uint8_t;
using WORD = std::uint16_t;
using USHORT = std::uint16_t;
using INT = int;
using UINT = unsigned int;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using DWORD = std::uint32_t;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using WCHAR = wchar_t;
using HRESULT = std::int32_t;
using LSTATUS = std::int32_t;
using NTSTATUS = std::int32_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using ACCESS_MASK = DWORD;
using REGSAM = DWORD;
#define __int64 long long

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using PBYTE = BYTE*;
using LPBYTE = BYTE*;
using PUCHAR = UCHAR*;
using LPBOOL = BOOL*;
using PLONG = LONG*;
using LPLONG = LONG*;
using PULONG = ULONG*;
using PDWORD = DWORD*;
using LPDWORD = DWORD*;
using PDWORD_PTR = DWORD_PTR*;
using PUINT = UINT*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = wchar_t*;
using PWSTR = wchar_t*;
using LPCWSTR = const wchar_t*;
using PCWSTR = const wchar_t*;
using LPCCH = const char*;
using LPCWCH = const wchar_t*;

using HANDLE = void*;
using PHANDLE = HANDLE*;
using HLOCAL = void*;

// NOLINTBEGIN(bugprone-macro-parentheses): the argument is a name to be declared.
#define SIM_DECLARE_HANDLE(name)                                                                             \
    struct name##__                                                                                          \
    {                                                                                                        \
        int unused;                                                                                          \
    };                                                                                                       \
    using name = name##__*
// NOLINTEND(bugprone-macro-parentheses)
SIM_DECLARE_HANDLE(HKEY);
SIM_DECLARE_HANDLE(HINSTANCE);
SIM_DECLARE_HANDLE(HWND);
SIM_DECLARE_HANDLE(HICON);
using HMODULE = HINSTANCE;
using HCURSOR = HICON;
using PHKEY = HKEY*;

// The exact type that GetProcAddress answers is cast by its caller.
using FARPROC = INT_PTR(WINAPI*)();

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif
#define MAX_PATH 260

/// Tenths of microseconds since the year 1601.
struct FILETIME
{
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};
using PFILETIME = FILETIME*;

struct GUID
{
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};
static_assert(sizeof(GUID) == 16);
using _GUID = GUID;
using IID = GUID;
using CLSID = GUID;
using REFIID = const IID&;
using REFCLSID = const CLSID&;
using LPCLSID = CLSID*;

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
