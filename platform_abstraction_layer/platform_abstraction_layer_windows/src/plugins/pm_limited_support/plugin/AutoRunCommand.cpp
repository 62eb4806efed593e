// plugin/AutoRunCommand.cpp
//
// The command that has the companion application start with Windows, or not. It is made for no user in
// particular.

#include "foundation/Log.h"
#include "foundation/Text.h"
#include "plugin/CommandTable.h"
#include "plugin/RequestIo.h"
#include "scheme/SchemeEx.h"

#include <iterator>

LONG ProcessORVARequest(CPluginHelper&, const PM_Request& request, const Command& command) noexcept
{
    PmLog(L"enter ProcessORVARequest %d", command.info.number);
    if (!request_io::HasRequiredPointers(request, command.info))
    {
        return TRX_OPERATION_FAIL;
    }
    const auto record = request_io::ReadPayload<PM_AutoRun_Data>(request);
    wchar_t path[text::kPathCapacity];
    text::ToWide(record.path, path);
    PmLog(L"PM_AUTORUN_ORVA: get autorun flag=%d, orva path is %s", record.flag, path);

    CSchemeEx engine;
    if (engine.SetAutoRunORVA(static_cast<int>(record.flag), path, static_cast<ULONG>(std::size(path))) == 0)
    {
        PmLog(L"PM_AUTORUN_ORVA: SetAutoRunORVA failed");
        return TRX_OPERATION_FAIL;
    }
    return TRX_OPERATION_OK;
}
