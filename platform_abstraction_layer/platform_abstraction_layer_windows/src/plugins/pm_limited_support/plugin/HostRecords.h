// plugin/HostRecords.h
//
// What passes between the host and the plug-in: the request, the host's table, and the result codes. On the
// product's platform pointers are 32 bits wide; natively the same fields have their natural alignment. The
// header compiles as C and as C++.
#pragma once

#include <windows.h>

#include <assert.h>
#include <stddef.h>

enum
{
    /// Bytes of a command's name in a request. A name ends at the first NUL or here.
    kCommandNameSize = 32
};

/// One request, 56 bytes. The record and its buffers are the host's and valid for the call.
typedef struct PM_Request
{
    DWORD reserved;                 ///< offset 0: reserved for the host
    char command[kCommandNameSize]; ///< offset 4: the command's name in ASCII
    const char* userId;             ///< offset 36: the account that the request is made for, below 1024 bytes
    const void* params;             ///< offset 40: the payload
    DWORD paramsLen;                ///< offset 44: its size in bytes
    void* result;                   ///< offset 48: where the reply goes
    DWORD* resultLen;               ///< offset 52: on entry the room there, on return the reply's size
} PM_Request;
static_assert(offsetof(PM_Request, command) == 4, "as documented");
static_assert(sizeof(void*) != 4 ||
                  (offsetof(PM_Request, userId) == 36 && offsetof(PM_Request, params) == 40 &&
                   offsetof(PM_Request, paramsLen) == 44 && offsetof(PM_Request, result) == 48 &&
                   offsetof(PM_Request, resultLen) == 52 && sizeof(PM_Request) == 56),
              "as documented");

/// The table that the host hands over, 8 bytes.
typedef struct PM_HostInterface
{
    DWORD reserved; ///< offset 0: reserved for the host

    /// offset 4: takes an event. `data` is valid for the call; what the function answers is ignored. It is
    /// called on the request's thread and on the notification thread, also by both at once.
    int(__cdecl* SendEvent)(const char* moduleId, const char* eventName, const void* data, DWORD dataLen);
} PM_HostInterface;
static_assert(sizeof(void*) != 4 ||
                  (offsetof(PM_HostInterface, SendEvent) == 4 && sizeof(PM_HostInterface) == 8),
              "as documented");

// What a request answers: macros, which in C too can stand behind `case`.
#define TRX_OPERATION_OK ((LONG)0)
#define TRX_OPERATION_REFUSED ((LONG)1) ///< recognised and not carried out
#define TRX_UNKNOWN_COMMAND ((LONG)5)
#define TRX_OPERATION_FAIL ((LONG)6)
