// plugin/SchemeVariableCommands.cpp
//
// The commands that read, edit and apply schemes.

#include "foundation/Log.h"
#include "plugin/RequestIo.h"
#include "plugin/SchemeCommands.h"
#include "plugin/SchemeConversion.h"

#include <cstring>
#include <iterator>

namespace scheme_commands
{

namespace
{

// A variable's record with its name in both forms.
struct Variable
{
    explicit Variable(const PM_Request& request) noexcept
        : record(request_io::ReadPayload<PM_Variable_Data>(request)),
          nameSize(text::Length(record.valName, sizeof record.valName))
    {
        std::memcpy(narrowName, record.valName, nameSize);
        narrowName[nameSize] = '\0';
        text::ToWide(narrowName, nameSize, name, std::size(name));
    }

    PM_Variable_Data record;
    std::size_t nameSize;
    char narrowName[sizeof(PM_Variable_Data::valName) + 1];
    wchar_t name[256];
};

// The answer is the reply in any case; a negative one is a failure too.
LONG ReplyAlways(const Call& call, LONG answer) noexcept
{
    ReplyNumber(call, answer);
    return answer < 0 ? TRX_OPERATION_FAIL : TRX_OPERATION_OK;
}

} // namespace

LONG GetActiveScheme(const Call& call) noexcept
{
    const LONG active = call.engine.GetActivePwrScheme(0);
    PmLog(L"PM_GET_ACTIVE_SCHEME activeScheme=%d\n", active);
    return ReplyAlways(call, active);
}

LONG ApplyScheme(const Call& call) noexcept
{
    const auto scheme = request_io::ReadPayload<LONG>(call.request);
    const LONG previous = call.engine.SetActivePwrScheme(static_cast<int>(scheme), call.userName);
    PmLog(L"PM_APPLY_SCHEME %d\n", previous);
    // The host learns of a failure from the reply alone.
    ReplyNumber(call, previous);
    return TRX_OPERATION_OK;
}

LONG EditScheme(const Call& call) noexcept
{
    const Variable variable(call.request);
    const PM_Variable_Data& record = variable.record;
    PmLog(L"PM_EDIT_SCHEME schemeID=%d, ifAC=%d, valName=%s,val=%d\n", record.schemeID, record.ifAC,
          variable.name, record.val);
    const LONG answer =
        call.engine.SetPwrVariable(static_cast<int>(record.schemeID), static_cast<int>(record.ifAC),
                                   variable.name, static_cast<int>(record.val));
    PmLog(L"PM_EDIT_SCHEME result=%d\n", answer);
    return ReplyOnSuccess(call, answer);
}

LONG EditSchemeAll(const Call& call) noexcept
{
    PWRSET setting{};
    ConvertPwrSchemeData(request_io::ReadPayload<PM_Power_Scheme_Data_ALL>(call.request), setting);
    return ReplyOnSuccess(call, call.engine.SetPwrVariable(setting));
}

LONG QueryScheme(const Call& call) noexcept
{
    const Variable variable(call.request);
    const PM_Variable_Data& record = variable.record;
    PmLog(L"PM_QUERY_SCHEME schemeID=%d, ifAC=%d, namemLen=%d\n", record.schemeID, record.ifAC,
          static_cast<LONG>(variable.nameSize));
    OutputDebugStringA(variable.narrowName);
    PmLog(L"PM_QUERY_SCHEME schemeID=%d, ifAC=%d, valName=%s\n", record.schemeID, record.ifAC, variable.name);
    const LONG answer = call.engine.GetPwrVariable(static_cast<int>(record.schemeID),
                                                   static_cast<int>(record.ifAC), variable.name);
    PmLog(L"PM_QUERY_SCHEME result=%d\n", answer);
    return ReplyAlways(call, answer);
}

LONG QuerySchemeAll(const Call& call) noexcept
{
    const auto scheme = request_io::ReadPayload<LONG>(call.request);
    PmLog(L"enter PM_QUERY_SCHEME_ALL, id=%d", scheme);
    PWRSET setting{};
    call.engine.GetPwrVariableAll(setting, static_cast<int>(scheme));
    PM_Power_Scheme_Data_ALL reply;
    ConvertPwrSet(setting, reply);
    request_io::WriteReply(call.request, reply);
    return TRX_OPERATION_OK;
}

LONG GetSchemeVarCount(const Call& call) noexcept
{
    const Variable variable(call.request);
    PmLog(L"PM_GET_SCHEME_VAR_COUNT valName=%s\n", variable.name);
    const LONG answer = call.engine.GetPwrVariableOptCount(variable.name);
    PmLog(L"PM_GET_SCHEME_VAR_COUNT result=%d\n", answer);
    return ReplyAlways(call, answer);
}

LONG GetSchemeVarOptValue(const Call& call) noexcept
{
    const Variable variable(call.request);
    PmLog(L"PM_GET_SCHEME_VAR_OPT_VALUE valName=%s\n", variable.name);
    const LONG answer =
        call.engine.GetPwrVariableOptValue(variable.name, static_cast<int>(variable.record.val));
    PmLog(L"PM_GET_SCHEME_VAR_OPT_VALUE result=%d\n", answer);
    return ReplyAlways(call, answer);
}

LONG GetUserId(const Call& call) noexcept
{
    request_io::WriteReply(call.request, call.userId, static_cast<DWORD>(std::strlen(call.userId) + 1));
    return TRX_OPERATION_OK;
}

// The common steps are all that the command does.
LONG InitCfgFile(const Call&) noexcept
{
    return TRX_OPERATION_OK;
}

} // namespace scheme_commands
