// include/winbase.h
//
// kernel32: kernel objects, waits, threads, modules, memory, time, devices, text, files with sections. Other
// files stand in a header of their own, which this one brings along.
#pragma once

#include <winnt.h>

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

#define INFINITE 0xFFFFFFFFU
#define WAIT_OBJECT_0 0x00000000U
#define WAIT_TIMEOUT 258U
#define WAIT_FAILED 0xFFFFFFFFU
#define MAXIMUM_WAIT_OBJECTS 64

SIM_API DWORD WINAPI GetLastError();
SIM_API void WINAPI SetLastError(DWORD error);

// Handles

struct SECURITY_ATTRIBUTES
{
    DWORD nLength;
    LPVOID lpSecurityDescriptor;
    BOOL bInheritHandle;
};
static_assert(sizeof(void*) != 4 || sizeof(SECURITY_ATTRIBUTES) == 12);
using LPSECURITY_ATTRIBUTES = SECURITY_ATTRIBUTES*;

/// Natively all synchronous; a call that names one of these is refused.
struct OVERLAPPED
{
    ULONG_PTR Internal;
    ULONG_PTR InternalHigh;
    DWORD Offset;
    DWORD OffsetHigh;
    HANDLE hEvent;
};
static_assert(sizeof(void*) != 4 || sizeof(OVERLAPPED) == 20);
using LPOVERLAPPED = OVERLAPPED*;

SIM_API BOOL WINAPI CloseHandle(HANDLE handle);

// Events, semaphores, waits

SIM_API HANDLE WINAPI CreateEventW(LPSECURITY_ATTRIBUTES attributes, BOOL manualReset, BOOL initialState,
                                   LPCWSTR name);
SIM_API HANDLE WINAPI OpenEventW(DWORD access, BOOL inherit, LPCWSTR name);
SIM_API BOOL WINAPI SetEvent(HANDLE event);
SIM_API BOOL WINAPI ResetEvent(HANDLE event);

SIM_API HANDLE WINAPI CreateSemaphoreW(LPSECURITY_ATTRIBUTES attributes, LONG initialCount, LONG maximumCount,
                                       LPCWSTR name);
SIM_API HANDLE WINAPI OpenSemaphoreW(DWORD access, BOOL inherit, LPCWSTR name);
SIM_API BOOL WINAPI ReleaseSemaphore(HANDLE semaphore, LONG releaseCount, LPLONG previousCount);

SIM_API DWORD WINAPI WaitForSingleObject(HANDLE handle, DWORD milliseconds);
SIM_API DWORD WINAPI WaitForMultipleObjects(DWORD count, const HANDLE* handles, BOOL waitAll,
                                            DWORD milliseconds);

// File mappings. Only those backed by the page file exist natively.

#define FILE_MAP_ALL_ACCESS SECTION_ALL_ACCESS

SIM_API HANDLE WINAPI CreateFileMappingW(HANDLE file, LPSECURITY_ATTRIBUTES attributes, DWORD protection,
                                         DWORD maximumSizeHigh, DWORD maximumSizeLow, LPCWSTR name);
SIM_API HANDLE WINAPI OpenFileMappingW(DWORD access, BOOL inherit, LPCWSTR name);
SIM_API LPVOID WINAPI MapViewOfFile(HANDLE mapping, DWORD access, DWORD offsetHigh, DWORD offsetLow,
                                    SIZE_T size);
SIM_API BOOL WINAPI UnmapViewOfFile(LPCVOID view);

// Threads and processes

using PTHREAD_START_ROUTINE = DWORD(WINAPI*)(LPVOID);
using LPTHREAD_START_ROUTINE = PTHREAD_START_ROUTINE;

SIM_API HANDLE WINAPI CreateThread(LPSECURITY_ATTRIBUTES attributes, SIZE_T stackSize,
                                   LPTHREAD_START_ROUTINE start, LPVOID parameter, DWORD flags,
                                   LPDWORD threadId);
SIM_API __attribute__((noreturn)) void WINAPI FreeLibraryAndExitThread(HMODULE module, DWORD exitCode);
SIM_API HANDLE WINAPI GetCurrentThread();
SIM_API DWORD WINAPI GetCurrentThreadId();
SIM_API HANDLE WINAPI GetCurrentProcess();
SIM_API DWORD_PTR WINAPI SetThreadAffinityMask(HANDLE thread, DWORD_PTR mask);
SIM_API BOOL WINAPI GetProcessAffinityMask(HANDLE process, PDWORD_PTR processMask, PDWORD_PTR systemMask);

// Critical sections. The fields are the system's own business.

struct RTL_CRITICAL_SECTION
{
    alignas(void*) BYTE opaque[8 + 4 * sizeof(void*)];
};
static_assert(sizeof(void*) != 4 || sizeof(RTL_CRITICAL_SECTION) == 24);
using CRITICAL_SECTION = RTL_CRITICAL_SECTION;
using LPCRITICAL_SECTION = CRITICAL_SECTION*;

SIM_API void WINAPI InitializeCriticalSection(LPCRITICAL_SECTION section);
SIM_API void WINAPI EnterCriticalSection(LPCRITICAL_SECTION section);
SIM_API BOOL WINAPI TryEnterCriticalSection(LPCRITICAL_SECTION section);
SIM_API void WINAPI LeaveCriticalSection(LPCRITICAL_SECTION section);
SIM_API void WINAPI DeleteCriticalSection(LPCRITICAL_SECTION section);

// Modules

#define GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS 0x00000004

SIM_API HMODULE WINAPI LoadLibraryW(LPCWSTR name);
SIM_API BOOL WINAPI FreeLibrary(HMODULE module);
SIM_API FARPROC WINAPI GetProcAddress(HMODULE module, LPCSTR nameOrOrdinal);
SIM_API HMODULE WINAPI GetModuleHandleW(LPCWSTR name);
SIM_API BOOL WINAPI GetModuleHandleExW(DWORD flags, LPCWSTR nameOrAddress, HMODULE* module);
SIM_API DWORD WINAPI GetModuleFileNameW(HMODULE module, LPWSTR path, DWORD size);

// Memory

#define HEAP_ZERO_MEMORY 0x00000008

SIM_API HANDLE WINAPI GetProcessHeap();
SIM_API LPVOID WINAPI HeapAlloc(HANDLE heap, DWORD flags, SIZE_T size);
SIM_API BOOL WINAPI HeapFree(HANDLE heap, DWORD flags, LPVOID block);
SIM_API HLOCAL WINAPI LocalFree(HLOCAL block);

// Time, the debugger channel, devices

SIM_API void WINAPI Sleep(DWORD milliseconds);
SIM_API DWORD WINAPI GetTickCount();

SIM_API void WINAPI OutputDebugStringW(LPCWSTR text);
SIM_API void WINAPI OutputDebugStringA(LPCSTR text);

SIM_API BOOL WINAPI DeviceIoControl(HANDLE device, DWORD controlCode, LPVOID input, DWORD inputSize,
                                    LPVOID output, DWORD outputSize, LPDWORD returned,
                                    LPOVERLAPPED overlapped);

// Environment, code pages, comparison of text

/// The characters of the expanded text with its terminator, also when `size` characters don't hold it.
SIM_API DWORD WINAPI ExpandEnvironmentStringsW(LPCWSTR source, LPWSTR target, DWORD size);

#define CP_ACP 0
#define CP_UTF8 65001

/// Lengths are in units of the respective text; a source length of -1 stands for a terminated text and
/// includes the terminator, a target length of 0 asks for the length that is needed. Knows CP_ACP and
/// CP_UTF8.
SIM_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCCH source, int sourceLength,
                                       LPWSTR target, int targetLength);
SIM_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWCH source, int sourceLength,
                                       LPSTR target, int targetLength, LPCCH defaultChar,
                                       LPBOOL usedDefaultChar);

SIM_API int WINAPI lstrlenW(LPCWSTR text);
SIM_API int WINAPI lstrcmpiW(LPCWSTR left, LPCWSTR right);

// Files with sections and "key=value" lines

/// The number behind the key, wrapped to 32 bits; `otherwise` when file, section or key is missing or the
/// value is empty.
SIM_API UINT WINAPI GetPrivateProfileIntW(LPCWSTR section, LPCWSTR key, INT otherwise, LPCWSTR file);

/// The characters copied, without the terminator; of a cut text `size` - 1. There are no lists of sections
/// and keys.
SIM_API DWORD WINAPI GetPrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR otherwise, LPWSTR buffer,
                                              DWORD size, LPCWSTR file);

/// A null `value` removes the key, a null `key` the section.
SIM_API BOOL WINAPI WritePrivateProfileStringW(LPCWSTR section, LPCWSTR key, LPCWSTR value, LPCWSTR file);

#include <fileapi.h>
