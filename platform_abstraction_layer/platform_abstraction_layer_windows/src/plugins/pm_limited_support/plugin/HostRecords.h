// plugin/HostRecords.h
//
// What passes between the host and the plug-in: the request, the host's table, and the result codes. On the
// product's platform pointers are 32 bits wide; natively the same fields have their natural alignment.
#pragma once

#include <windows.h>

#include <cstddef>

/// Bytes of a command's name in a request. A name ends at the first NUL or here.
constexpr std::size_t kCommandNameSize = 32;

/// One request, 56 bytes. The record and its buffers are the host's and valid for the call.
struct PM_Request
{
    DWORD reserved;                 ///< offset 0: reserved for the host
    char command[kCommandNameSize]; ///< offset 4: the command's name in ASCII
    const char* userId;             ///< offset 36: the account that the request is made for, below 1024 bytes
    const void* params;             ///< offset 40: the payload
    DWORD paramsLen;                ///< offset 44: its size in bytes
    void* result;                   ///< offset 48: where the reply goes
    DWORD* resultLen;               ///< offset 52: on entry the room there, on return the reply's size
};
static_assert(offsetof(PM_Request, command) == 4);
static_assert(sizeof(void*) != 4 ||
              (offsetof(PM_Request, userId) == 36 && offsetof(PM_Request, params) == 40 &&
               offsetof(PM_Request, paramsLen) == 44 && offsetof(PM_Request, result) == 48 &&
               offsetof(PM_Request, resultLen) == 52 && sizeof(PM_Request) == 56));

/// The table that the host hands over, 8 bytes.
struct PM_HostInterface
{
    DWORD reserved; ///< offset 0: reserved for the host

    /// offset 4: takes an event. `data` is valid for the call; what the function answers is ignored. It is
    /// called on the request's thread and on the notification thread, also by both at once.
    int(__cdecl* SendEvent)(const char* moduleId, const char* eventName, const void* data, DWORD dataLen);
};
static_assert(sizeof(void*) != 4 ||
              (offsetof(PM_HostInterface, SendEvent) == 4 && sizeof(PM_HostInterface) == 8));

/// What a request answers.
constexpr LONG TRX_OPERATION_OK = 0;
constexpr LONG TRX_OPERATION_REFUSED = 1; ///< recognised and not carried out
constexpr LONG TRX_UNKNOWN_COMMAND = 5;
constexpr LONG TRX_OPERATION_FAIL = 6;
