// plugin/SchemeCommands.cpp
//
// The frame of the scheme commands: for whom the request is, what each command wants of it, and the way to
// its function.

#include "plugin/SchemeCommands.h"

#include "foundation/PmLog.h"
#include "plugin/CommandNumbers.h"
#include "plugin/Exchange.h"
#include "plugin/Handlers.h"
#include "plugin/PluginHelper.h"
#include "plugin/WireRecords.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace
{

using namespace scheme_commands;
using exchange::Length;
using exchange::Reply;
using exchange::Terms;

// Room of an account name on the wire, in bytes with the terminator, and the longest name in characters.
constexpr std::size_t kUserIdSize = 1024;
constexpr std::size_t kLongestUserName = 256;

constexpr Terms kNothing{};
constexpr Terms kNumberOut{Length::Any, 0, Reply::Required};
constexpr Terms kNumberIn{Length::AtLeast, sizeof(LONG), Reply::None};
constexpr Terms kNumberInReplyOut{Length::AtLeast, sizeof(LONG), Reply::Required};
constexpr Terms kNumberInReplyIfWanted{Length::AtLeast, sizeof(LONG), Reply::Optional};
constexpr Terms kSelector{Length::Unchecked, sizeof(LONG), Reply::None};

template <class Record>
constexpr Terms kRecordInReplyOut{Length::Exact, sizeof(Record), Reply::Required};
template <class Record>
constexpr Terms kRecordInReplyIfWanted{Length::Exact, sizeof(Record), Reply::Optional};

struct SchemeCommand
{
    LONG number;
    Terms terms;
    const wchar_t* enterLog;  ///< null where the command has none; may show `paramsLen`
    const wchar_t* lengthLog; ///< what is said of a wrong length; null where the command has nothing
    Function run;
};

constexpr SchemeCommand kCommands[] = {
    {PM_GET_CPU_SPEED, kNumberOut, nullptr, nullptr, GetCpuSpeed},
    {PM_SET_CPU_SPEED, kNumberIn, nullptr, nullptr, SetCpuSpeed},
    {PM_ADD_SCHEME, kRecordInReplyOut<PM_Power_Scheme_Data>, nullptr, nullptr, AddScheme},
    {PM_EDIT_SCHEME, kRecordInReplyIfWanted<PM_Variable_Data>, nullptr, nullptr, EditScheme},
    {PM_DELETE_SCHEME, kNumberInReplyIfWanted, nullptr, nullptr, DeleteScheme},
    {PM_QUERY_SCHEME, kRecordInReplyOut<PM_Variable_Data>, L"paramLen=%d\n",
     L"pRequest->paramsLen != sizeof(PM_Variable_Data)", QueryScheme},
    {PM_GET_SCHEME_NAME, kNumberInReplyOut, L"Get Scheme name.\n", nullptr, GetSchemeName},
    {PM_GET_ACTIVE_SCHEME, kNumberOut, nullptr, nullptr, GetActiveScheme},
    {PM_GET_USERID, kNumberOut, nullptr, nullptr, GetUserId},
    {PM_GET_SCHEME_VAR_COUNT, kRecordInReplyOut<PM_Variable_Data>, nullptr, nullptr, GetSchemeVarCount},
    {PM_GET_SCHEME_VAR_OPT_VALUE, kRecordInReplyOut<PM_Variable_Data>, nullptr, nullptr,
     GetSchemeVarOptValue},
    {PM_INIT_CFG_FILE, kNothing, nullptr, nullptr, InitCfgFile},
    {PM_ADD_SCHEME_ALL, kRecordInReplyOut<PM_Power_Scheme_Data_ALL>, nullptr,
     L"the len check failed in  PM_ADD_SCHEME_ALL\n", AddSchemeAll},
    {PM_QUERY_SCHEME_ALL, kNumberInReplyOut, nullptr, nullptr, QuerySchemeAll},
    {PM_EDIT_SCHEME_ALL, kRecordInReplyIfWanted<PM_Power_Scheme_Data_ALL>, L"enter PM_EDIT_SCHEME_ALL",
     L"the len check failed in  PM_EDIT_SCHEME_ALL\n", EditSchemeAll},
    {PM_APPLY_SCHEME, kNumberInReplyIfWanted, L"enter PM_APPLY_SCHEME\n", L"result = TRX_OPERATION_FAIL",
     ApplyScheme},
    {PM_CLEAR_SCHEMES, kSelector, L"PM_CLEAR_SCHEMES", nullptr, ClearSchemes},
};

const SchemeCommand* Find(LONG number) noexcept
{
    const auto* const found =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [number](const SchemeCommand& row) { return row.number == number; });
    return found == std::end(kCommands) ? nullptr : found;
}

// The account name of a request, in both forms.
struct User
{
    char id[kUserIdSize];
    // No byte becomes more than one character.
    wchar_t name[kUserIdSize];
};

// False when there is no name or a name that no account can have.
bool ReadUser(const PM_Request& request, User& user) noexcept
{
    if (request.userId == nullptr)
    {
        return false;
    }
    const std::size_t size = text::Length(request.userId, kUserIdSize - 1);
    std::memcpy(user.id, request.userId, size);
    user.id[size] = '\0';
    return text::ToWide(user.id, size, user.name, std::size(user.name)) <= kLongestUserName;
}

// The slot of the requesting user, whose name comes back in both forms; -1 when he can't be resolved.
int FindSlot(CPluginHelper& context, const PM_Request& request, LONG number, User& user) noexcept
{
    if (!ReadUser(request, user))
    {
        return -1;
    }
    PmLog(L"%s: CPluginHelper::HandleRequest %d\n", user.name, number);
    return context.GetUserInfoIndex(user.name);
}

// The command's own part, for a user whose slot is known.
LONG Run(const SchemeCommand& command, CPluginHelper& context, const PM_Request& request, const User& user,
         const UserInfo& slot) noexcept
{
    CSchemeEx engine;
    engine.Initialize();
    engine.SetSubKeyProfilePath(slot.userName, slot.subKey, slot.profilePath);
    if (command.enterLog != nullptr)
    {
        PmLog(command.enterLog, request.paramsLen);
    }
    if (!exchange::IsLengthRight(request, command.terms))
    {
        if (command.lengthLog != nullptr)
        {
            PmLog(command.lengthLog);
        }
        return TRX_OPERATION_FAIL;
    }
    return command.run({context, request, engine, user.id, user.name});
}

} // namespace

void scheme_commands::ReplyNumber(const Call& call, LONG number) noexcept
{
    exchange::WriteReply(call.request, number);
}

LONG ProcessPwrSchemeFunc(CPluginHelper& context, const PM_Request& request, LONG number) noexcept
{
    PmLog(L"enter ProcessPwrSchemeFunc %d", number);
    const SchemeCommand* const command = Find(number);
    if (command == nullptr)
    {
        return TRX_UNKNOWN_COMMAND;
    }
    if (!exchange::ArePointersRight(request, command->terms))
    {
        return TRX_OPERATION_FAIL;
    }
    User user;
    const int slot = FindSlot(context, request, number, user);
    if (slot < 0)
    {
        PmLog(L"get user infor index failed");
        return TRX_OPERATION_FAIL;
    }
    return Run(*command, context, request, user, context.users[slot]);
}
