// plugin/PluginHelper.cpp
//
// The context: start and stop, the dispatch of requests, the user table.

#include "plugin/PluginHelper.h"

#include "foundation/Log.h"
#include "foundation/UserFolders.h"
#include "plugin/CommandTable.h"
#include "plugin/NotifyThread.h"
#include "plugin/RequestLock.h"

#include <atomic>
#include <cstring>

namespace
{

// The slot that a new user takes when the table is full.
constexpr int kReplacedSlot = 2;

CPluginHelper theInstance;

} // namespace

CPluginHelper::CPluginHelper() noexcept = default;
CPluginHelper::CPluginHelper(const CPluginHelper&) noexcept = default;
CPluginHelper& CPluginHelper::operator=(const CPluginHelper&) noexcept = default;
CPluginHelper::~CPluginHelper() = default;

CPluginHelper& CPluginHelper::Instance() noexcept
{
    return theInstance;
}

LONG CPluginHelper::Initialize(PM_HostInterface* hostInterface) noexcept
{
    std::atomic_ref(host).store(hostInterface);
    if (!notification::Start(*this))
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"Create Event APPLY_SCHEME_EVENT");
    return TRX_OPERATION_OK;
}

LONG CPluginHelper::Uninitialize() noexcept
{
    const request_lock::Pause pause;
    {
        // Requests that run now may still call the host.
        const request_lock::Scope drained;
    }
    notification::Stop(*this);
    return TRX_OPERATION_OK;
}

LONG CPluginHelper::HandleRequest(const PM_Request* request) noexcept
{
    if (request == nullptr)
    {
        return TRX_OPERATION_FAIL;
    }
    PM_Request local;
    std::memcpy(&local, request, sizeof local);

    const Command* const command = FindCommand(local.command);
    if (command == nullptr || command->handler == nullptr)
    {
        return TRX_UNKNOWN_COMMAND;
    }
    const request_lock::Scope lock;
    return command->handler(*this, local, *command);
}

int CPluginHelper::GetUserInfoIndex(const wchar_t* userName) noexcept
{
    int target = -1;
    for (int slot = 0; slot < kUserSlots; ++slot)
    {
        if (users[slot].inUse == 1 && text::EqualNames(users[slot].userName, userName))
        {
            PmLog(L"find the subkey&path %d", slot);
            return slot;
        }
        if (users[slot].inUse == 0 && target < 0)
        {
            target = slot;
        }
    }
    if (target >= 0)
    {
        PmLog(L"can't find subkey&path, find an empty one %d", target);
    }
    else
    {
        PmLog(L"can't find empty one, replace 2");
        target = kReplacedSlot;
    }

    UserInfo& user = users[target];
    user = {};
    text::Copy(user.userName, userName);
    if (GetCurrentUserSubkeyProfilePath(userName, user.subKey, user.profilePath) != 1)
    {
        PmLog(L"set subkey&path at pos%d failed", target);
        return -1;
    }
    user.inUse = 1;
    PmLog(L"set subkey&path at pos%d succeed", target);
    PmLog(L"Getuserinfo SubKey=%s", user.subKey);
    PmLog(L"Getuserinfo path=%s", user.profilePath);
    return target;
}

void CPluginHelper::SendHostEvent(const char* eventName, LONG value) noexcept
{
    const PM_HostInterface* const receiver = std::atomic_ref(host).load();
    if (receiver != nullptr && receiver->SendEvent != nullptr)
    {
        receiver->SendEvent(kModuleId, eventName, &value, sizeof value);
    }
}
