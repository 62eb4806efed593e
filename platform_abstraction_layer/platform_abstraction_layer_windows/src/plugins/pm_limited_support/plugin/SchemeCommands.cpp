// plugin/SchemeCommands.cpp
//
// The common steps of the commands on schemes, above all: for whom the request is made.

#include "plugin/SchemeCommands.h"

#include "foundation/Log.h"
#include "plugin/CommandTable.h"
#include "plugin/PluginHelper.h"
#include "plugin/RequestIo.h"

#include <cstring>
#include <iterator>

namespace
{

using scheme_commands::Call;

// The longest account name in characters.
constexpr std::size_t kLongestUserName = 256;

// The account name of a request, in both forms.
struct User
{
    char id[commands::kUserIdSize];
    // No byte becomes more than one character.
    wchar_t name[commands::kUserIdSize];
};

// False when there is no name or a name that no account can have.
bool ReadUser(const PM_Request& request, User& user) noexcept
{
    if (request.userId == nullptr)
    {
        return false;
    }
    const std::size_t size = text::Length(request.userId, commands::kUserIdSize - 1);
    std::memcpy(user.id, request.userId, size);
    user.id[size] = '\0';
    return text::ToWide(user.id, size, user.name, std::size(user.name)) <= kLongestUserName;
}

// The slot of the requesting user, whose name comes back in both forms; -1 when the lookup fails.
int FindSlot(CPluginHelper& context, const PM_Request& request, const Command& command, User& user) noexcept
{
    if (!ReadUser(request, user))
    {
        return -1;
    }
    PmLog(L"%s: CPluginHelper::HandleRequest %d\n", user.name, command.info.number);
    return context.GetUserInfoIndex(user.name);
}

// The command's own part, for a user whose slot is known.
LONG Run(const Command& command, CPluginHelper& context, const PM_Request& request, const User& user,
         const UserInfo& slot) noexcept
{
    CSchemeEx engine;
    engine.Initialize();
    engine.SetSubKeyProfilePath(slot.userName, slot.subKey, slot.profilePath);
    if (command.entryLog != nullptr)
    {
        PmLog(command.entryLog, request.paramsLen);
    }
    if (!request_io::IsLengthRight(request, command.info))
    {
        if (command.lengthLog != nullptr)
        {
            PmLog(command.lengthLog);
        }
        return TRX_OPERATION_FAIL;
    }
    return command.scheme({context, request, engine, user.id, user.name});
}

} // namespace

void scheme_commands::ReplyNumber(const Call& call, LONG number) noexcept
{
    request_io::WriteReply(call.request, number);
}

LONG scheme_commands::ReplyOnSuccess(const Call& call, LONG answer) noexcept
{
    if (answer < 0)
    {
        return TRX_OPERATION_FAIL;
    }
    ReplyNumber(call, answer);
    return TRX_OPERATION_OK;
}

LONG ProcessPwrSchemeFunc(CPluginHelper& context, const PM_Request& request, const Command& command) noexcept
{
    PmLog(L"enter ProcessPwrSchemeFunc %d", command.info.number);
    if (!request_io::HasRequiredPointers(request, command.info))
    {
        return TRX_OPERATION_FAIL;
    }
    User user;
    const int slot = FindSlot(context, request, command, user);
    if (slot < 0)
    {
        PmLog(L"get user infor index failed");
        return TRX_OPERATION_FAIL;
    }
    return Run(command, context, request, user, context.users[slot]);
}
