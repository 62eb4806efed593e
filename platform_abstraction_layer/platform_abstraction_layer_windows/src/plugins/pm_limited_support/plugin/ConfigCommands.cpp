// plugin/ConfigCommands.cpp
//
// The commands on one key of a configuration file. They give access by file name, not by path: CORVLCfg
// and CORVLProfile know where the files lie.

#include "plugin/ConfigCommands.h"

#include "foundation/Log.h"
#include "foundation/OrvlProfile.h"
#include "plugin/CommandTable.h"
#include "plugin/FileName.h"
#include "plugin/RequestIo.h"

#include <algorithm>
#include <iterator>

namespace
{

bool HoldsLineBreak(const wchar_t* text) noexcept
{
    return text::ContainsAny(text, L"\r\n");
}

// A key that stays one on its line of the file, where blanks in front of it don't count.
bool IsKey(const wchar_t* text) noexcept
{
    const wchar_t* const end = text + text::Length(text);
    const wchar_t* const begin = std::find_if(text, end, [](wchar_t character) { return character > L' '; });
    return *begin != L'[' && *begin != L';' && !text::ContainsAny(text, L"=\r\n");
}

// Whether a file can hold the section and the key. A file has none of the others, so they are absent.
bool CanExist(const ConfigData& data) noexcept
{
    return !HoldsLineBreak(data.section) && IsKey(data.item);
}

// Whether what the command stores stays what it is in the file. Anything else would write lines of the
// caller's own making.
bool IsStorable(const ConfigData& data, PmCommand command) noexcept
{
    switch (command)
    {
    case PM_PUT_INT_INTO_CONFIG:
        return CanExist(data);
    case PM_PUT_STR_INTO_CONFIG:
        return CanExist(data) && !HoldsLineBreak(data.stringValue);
    default:
        return true;
    }
}

// Converts the text of an installation file, which ends after as many bytes as it has characters: in a code
// page with several bytes to a character it is cut short.
std::size_t ConvertInstallationText(const wchar_t* text, char (&narrow)[256]) noexcept
{
    const std::size_t size = std::min(text::ToNarrow(text, narrow, std::size(narrow)), text::Length(text));
    narrow[size] = '\0';
    return size;
}

} // namespace

namespace config_commands
{

LONG GetInt(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    const LONG number =
        CanExist(data) ? access.file.GetInt(data.section, data.item, data.defaultValue) : data.defaultValue;
    request_io::WriteReply(access.request, number);
    return TRX_OPERATION_OK;
}

LONG GetString(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    wchar_t text[256] = {};
    const int length = CanExist(data) ? access.file.GetString(data.section, data.item, text) : 0;
    PmLog(L"File=%s, Sec=%s, Item=%s str=%s, strlen=%d\n", data.file, data.section, data.item, text, length);

    char narrow[256];
    const std::size_t size =
        data.fileType == kProfileFile
            ? request_io::ConvertText(text, L"the needed string len is %d", narrow, std::size(narrow))
            : ConvertInstallationText(text, narrow);
    request_io::WriteReply(access.request, narrow, static_cast<DWORD>(size + 1));
    return TRX_OPERATION_OK;
}

LONG PutInt(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    return access.file.PutInt(data.section, data.item, data.value) != 0 ? TRX_OPERATION_OK
                                                                        : TRX_OPERATION_FAIL;
}

LONG PutString(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    const int written = access.file.PutString(data.section, data.item, data.stringValue);
    return written != 0 ? TRX_OPERATION_OK : TRX_OPERATION_FAIL;
}

} // namespace config_commands

void ConvertConfigData(const PM_Config_Data& wire, ConfigData& local) noexcept
{
    text::ToWide(wire.file, local.file);
    text::ToWide(wire.section, local.section);
    text::ToWide(wire.item, local.item);
    text::ToWide(wire.stringValue, local.stringValue);
    local.fileType = wire.fileType;
    local.defaultValue = wire.defaultValue;
    local.value = wire.value;
}

LONG ProcessConfigFunc(CPluginHelper&, const PM_Request& request, const Command& command) noexcept
{
    if (!request_io::IsLengthRight(request, command.info) ||
        !request_io::HasRequiredPointers(request, command.info))
    {
        return TRX_OPERATION_FAIL;
    }

    ConfigData data;
    ConvertConfigData(request_io::ReadPayload<PM_Config_Data>(request), data);
    PmLog(L"File=%s, Sec=%s, Item=%s, val=%d \n", data.file, data.section, data.item, data.value);
    const bool isNamed = IsFileName(data.file);
    const bool isStorable = IsStorable(data, command.info.number);
    if (data.fileType == kInstallationFile)
    {
        CORVLCfg file;
        if (!isNamed || file.Initialize(data.file) == 0)
        {
            PmLog(L"Initialize public configure file %sfailed.", data.file);
            return TRX_OPERATION_FAIL;
        }
        return isStorable ? command.config({request, data, file}) : TRX_OPERATION_FAIL;
    }
    CORVLProfile file;
    // A request that is refused doesn't create the file.
    const bool isOpen =
        data.fileType == kProfileFile && isNamed && isStorable && file.Initialize(data.file, nullptr, 0) != 0;
    return isOpen ? command.config({request, data, file}) : TRX_OPERATION_FAIL;
}
