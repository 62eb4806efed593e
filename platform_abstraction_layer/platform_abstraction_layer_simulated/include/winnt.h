// include/winnt.h
//
// Access rights, kernel object constants and registry types that several modules share.
#pragma once

#include <windef.h>

#define DELETE 0x00010000L
#define SYNCHRONIZE 0x00100000L
#define GENERIC_READ 0x80000000U
#define GENERIC_WRITE 0x40000000U
#define GENERIC_ALL 0x10000000U
#define MAXIMUM_ALLOWED 0x02000000L
#define FILE_SHARE_READ 0x00000001
#define FILE_SHARE_WRITE 0x00000002
#define FILE_SHARE_DELETE 0x00000004
#define FILE_ATTRIBUTE_NORMAL 0x00000080

#define EVENT_MODIFY_STATE 0x0002
#define EVENT_ALL_ACCESS 0x1F0003
#define SEMAPHORE_MODIFY_STATE 0x0002
#define SEMAPHORE_ALL_ACCESS 0x1F0003
#define THREAD_ALL_ACCESS 0x1F03FF
#define SECTION_MAP_WRITE 0x0002
#define SECTION_MAP_READ 0x0004
#define SECTION_ALL_ACCESS 0xF001F
#define PAGE_READWRITE 0x04

#define REG_NONE 0UL
#define REG_SZ 1UL
#define REG_EXPAND_SZ 2UL
#define REG_BINARY 3UL
#define REG_DWORD 4UL
#define REG_MULTI_SZ 7UL

#define KEY_QUERY_VALUE 0x0001
#define KEY_SET_VALUE 0x0002
#define KEY_CREATE_SUB_KEY 0x0004
#define KEY_ENUMERATE_SUB_KEYS 0x0008
#define KEY_WOW64_64KEY 0x0100
#define KEY_WOW64_32KEY 0x0200
#define KEY_READ 0x20019
#define KEY_WRITE 0x20006
#define KEY_ALL_ACCESS 0xF003F

#define REG_OPTION_NON_VOLATILE 0
#define REG_CREATED_NEW_KEY 1
#define REG_OPENED_EXISTING_KEY 2

#define DLL_PROCESS_DETACH 0
#define DLL_PROCESS_ATTACH 1

#define FILE_DEVICE_BATTERY 0x00000029
#define METHOD_BUFFERED 0
#define FILE_ANY_ACCESS 0
#define FILE_READ_ACCESS 1
#define CTL_CODE(type, function, method, access)                                                             \
    ((static_cast<DWORD>(type) << 16) | (static_cast<DWORD>(access) << 14) |                                 \
     (static_cast<DWORD>(function) << 2) | static_cast<DWORD>(method))
