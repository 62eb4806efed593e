// plugin/SchemeLifeCommands.cpp
//
// The commands that create, name, delete and clear schemes, and those on the speed of the processor.

#include "foundation/Log.h"
#include "plugin/PluginHelper.h"
#include "plugin/RequestIo.h"
#include "plugin/SchemeCommands.h"
#include "plugin/SchemeConversion.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace scheme_commands
{

namespace
{

// The engine's percentage for each wire value of the processor's speed; 0 percent means adaptive.
constexpr int kSpeedPercentages[] = {50, 75, 0, 100};

// What `CLEAR_SCHEMES` is asked for.
constexpr LONG kClearCurrentUser = 0;
constexpr LONG kClearAll = 1;

struct SchemeTexts
{
    wchar_t name[256];
    wchar_t description[512];
};

// Copies name and description into the record, each with its terminator. The description comes last, so it
// is complete where a name was too long for its field.
void FillIdentity(const SchemeTexts& texts, PM_Power_Scheme_Data& reply) noexcept
{
    char name[256];
    const std::size_t nameSize =
        request_io::ConvertText(texts.name, L"the needed name len is %d", name, sizeof name);
    char description[sizeof reply.desc];
    const std::size_t size = request_io::ConvertText(texts.description, L"the needed desc len is %d",
                                                     description, sizeof description);

    char* const record = reinterpret_cast<char*>(&reply);
    static_assert(offsetof(PM_Power_Scheme_Data, name) + sizeof name <= sizeof reply);
    std::memcpy(record + offsetof(PM_Power_Scheme_Data, name), name, nameSize + 1);
    std::memcpy(record + offsetof(PM_Power_Scheme_Data, desc), description, size + 1);
}

} // namespace

LONG GetCpuSpeed(const Call& call) noexcept
{
    const auto* const found =
        std::find(std::begin(kSpeedPercentages), std::end(kSpeedPercentages), call.engine.GetCPUSpeed());
    if (found == std::end(kSpeedPercentages))
    {
        return TRX_OPERATION_FAIL;
    }
    ReplyNumber(call, static_cast<LONG>(found - std::begin(kSpeedPercentages)));
    return TRX_OPERATION_OK;
}

LONG SetCpuSpeed(const Call& call) noexcept
{
    const auto value = request_io::ReadPayload<LONG>(call.request);
    if (value < 0 || value >= static_cast<LONG>(std::size(kSpeedPercentages)))
    {
        return TRX_OPERATION_FAIL;
    }
    const LONG previous = call.engine.SetCPUSpeed(kSpeedPercentages[value]);
    if (previous == -1)
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"send CPU Speed change event to TRX");
    call.context.SendHostEvent("CPU_SPEED_CHANGED", previous);
    return TRX_OPERATION_OK;
}

LONG GetSchemeName(const Call& call) noexcept
{
    const auto scheme = request_io::ReadPayload<LONG>(call.request);
    SchemeTexts texts{};
    ULONG nameCapacity = std::size(texts.name);
    ULONG descriptionCapacity = std::size(texts.description);
    PM_Power_Scheme_Data reply{};
    LONG result = TRX_OPERATION_OK;
    if (call.engine.GetPwrSchemeNameDesc(static_cast<int>(scheme), texts.name, &nameCapacity,
                                         texts.description, &descriptionCapacity) != 0)
    {
        PmLog(L"Get Scheme ID=%d, namelen=%d, name = %s, desclen=%d, desc=%s \n", scheme,
              static_cast<LONG>(text::Length(texts.name)), texts.name,
              static_cast<LONG>(text::Length(texts.description)), texts.description);
        FillIdentity(texts, reply);
    }
    else
    {
        PmLog(L"GetPwrSchemeNameDesc failed");
        result = TRX_OPERATION_FAIL;
    }
    request_io::WriteReply(call.request, reply);
    return result;
}

LONG AddScheme(const Call& call) noexcept
{
    const auto record = request_io::ReadPayload<PM_Power_Scheme_Data>(call.request);
    wchar_t name[256];
    wchar_t description[256];
    ConvertSchemeTexts(&record, name, description);
    PmLog(L"Get userID is %s", call.userName);
    const LONG added =
        call.engine.AddPwrScheme(name, description, static_cast<int>(record.schemeID), call.userName);
    if (added >= 0)
    {
        PmLog(L"Add Scheme ID=%d, name=%s, desc=%s, userID=%s\n", added, name, description, call.userName);
    }
    return ReplyOnSuccess(call, added);
}

LONG AddSchemeAll(const Call& call) noexcept
{
    PWRSET setting{};
    ConvertPwrSchemeData(request_io::ReadPayload<PM_Power_Scheme_Data_ALL>(call.request), setting);
    return ReplyOnSuccess(call, call.engine.AddPwrScheme(setting, call.userName));
}

LONG DeleteScheme(const Call& call) noexcept
{
    const auto scheme = request_io::ReadPayload<LONG>(call.request);
    PmLog(L"delete schemeID=%d", scheme);
    if (call.engine.DeletePwrScheme(static_cast<int>(scheme), call.userName) == 0)
    {
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"delete schemeID=%d.ret=%d", scheme, 1);
    ReplyNumber(call, 1);
    return TRX_OPERATION_OK;
}

LONG ClearSchemes(const Call& call) noexcept
{
    const auto selector = request_io::ReadPayload<LONG>(call.request);
    // The engine has the two numbers the other way round.
    if (selector == kClearCurrentUser || selector == kClearAll)
    {
        call.engine.ClearORV(selector == kClearCurrentUser ? 1 : 0);
    }
    request_io::WriteReplySize(call.request, 0);
    return TRX_OPERATION_OK;
}

} // namespace scheme_commands
