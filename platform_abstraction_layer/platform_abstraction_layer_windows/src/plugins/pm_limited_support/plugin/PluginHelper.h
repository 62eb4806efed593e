// plugin/PluginHelper.h
//
// The one context behind the exported functions: the host, the notification thread and the users for whom
// requests came.
#pragma once

#include "foundation/Api.h"
#include "foundation/Text.h"
#include "plugin/HostRecords.h"

/// How the plug-in calls itself, to the host and in every event.
inline constexpr char kModuleId[] = "Kelvo Power Manager";

/// One slot of the user table.
struct UserInfo
{
    LONG inUse;                               ///< 1 when the slot holds a resolved user, 0 when it is free
    wchar_t userName[text::kPathCapacity];    ///< the account name as the first request gave it
    wchar_t subKey[text::kPathCapacity];      ///< the user's key below HKEY_USERS, a SID string
    wchar_t profilePath[text::kPathCapacity]; ///< the user's configuration folder
};

/// There is exactly one object per process.
class ORVL_API CPluginHelper
{
public:
    CPluginHelper() noexcept;
    CPluginHelper(const CPluginHelper&) noexcept;
    CPluginHelper& operator=(const CPluginHelper&) noexcept;
    ~CPluginHelper();

    static CPluginHelper& Instance() noexcept;

    /// The bodies of `DP_Initialize` and `DP_Uninitialize`.
    LONG Initialize(PM_HostInterface* hostInterface) noexcept;
    LONG Uninitialize() noexcept;

    /// The body of `DP_HandleRequest`: finds the command and hands the request to its handler. 6 for a null
    /// request.
    LONG HandleRequest(const PM_Request* request) noexcept;

    /// The slot of `userName`, 0 to 15; a new user is resolved first. -1 when that fails.
    [[nodiscard]] int GetUserInfoIndex(const wchar_t* userName) noexcept;

    /// Tells the host of a change; without a host or its function the event is dropped.
    void SendHostEvent(const char* eventName, LONG value) noexcept;

    static constexpr int kUserSlots = 16;

    PM_HostInterface* host = nullptr;  ///< not owned; read and written as one by several threads
    HANDLE notifyThread = nullptr;     ///< null when there is none
    HANDLE applySchemeEvent = nullptr; ///< null when there is none
    UserInfo users[kUserSlots]{};      ///< lives as long as the process, also across `Uninitialize`
};
