// plugin/ConfigCommands.cpp
//
// The commands on one key of a configuration file. They give access by file name, not by path: where the
// files lie is the business of CORVLCfg and CORVLProfile.

#include "plugin/ConfigCommands.h"

#include "foundation/OrvlProfile.h"
#include "foundation/PmLog.h"
#include "plugin/CommandNumbers.h"
#include "plugin/Exchange.h"
#include "plugin/Handlers.h"

#include <algorithm>
#include <iterator>

namespace
{

using exchange::Reply;

// Fields of the record that only some commands read.
enum class Reads
{
    KeyAlone,
    KeyAndText,
};

// An opened file with what the command needs of it.
struct Access
{
    const PM_Request& request;
    const ConfigData& data;
    CORVLCfg& file;
};

bool HoldsAny(const wchar_t* text, const wchar_t* characters) noexcept
{
    const wchar_t* const end = text + text::Length(text);
    const wchar_t* const lastOfSet = characters + text::Length(characters);
    return std::find_first_of(text, end, characters, lastOfSet) != end;
}

bool HoldsLineBreak(const wchar_t* text) noexcept
{
    return HoldsAny(text, L"\r\n");
}

// A name inside the configuration folders, without a way out of them.
bool IsFileName(const wchar_t* text) noexcept
{
    return text[0] != L'\0' && !HoldsAny(text, L"\\/:") && !text::Contains(text, L"..") &&
           !HoldsLineBreak(text);
}

// A key that stays one on its line of the file, where blanks in front of it don't count.
bool IsKey(const wchar_t* text) noexcept
{
    const wchar_t* const end = text + text::Length(text);
    const wchar_t* const begin = std::find_if(text, end, [](wchar_t character) { return character > L' '; });
    return *begin != L'[' && *begin != L';' && !HoldsAny(text, L"=\r\n");
}

// Whether the texts that the command reads stay what they are in the file. Others would write lines of the
// caller's own making.
bool IsAccessible(const ConfigData& data, Reads reads) noexcept
{
    const bool textIsPlain = reads == Reads::KeyAlone || !HoldsLineBreak(data.stringValue);
    return IsFileName(data.file) && !HoldsLineBreak(data.section) && IsKey(data.item) && textIsPlain;
}

LONG GetInt(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    const LONG number = access.file.GetInt(data.section, data.item, data.defaultValue);
    exchange::WriteReply(access.request, number);
    return TRX_OPERATION_OK;
}

// Converts the text of an installation file, which ends after as many bytes as it has characters: in a code
// page with several bytes to a character it is cut short.
std::size_t ConvertInstallationText(const wchar_t* text, char (&narrow)[256]) noexcept
{
    const std::size_t size = std::min(text::ToNarrow(text, narrow, std::size(narrow)), text::Length(text));
    narrow[size] = '\0';
    return size;
}

LONG GetString(const Access& access) noexcept
{
    const ConfigData& data = access.data;
    wchar_t text[256] = {};
    const int length =
        access.file.GetString(data.section, data.item, nullptr, text, static_cast<int>(std::size(text)));
    PmLog(L"File=%s, Sec=%s, Item=%s str=%s, strlen=%d\n", data.file, data.section, data.item, text, length);

    char narrow[256];
    const std::size_t size =
        data.fileType == kProfileFile
            ? exchange::ConvertText(text, L"the needed string len is %d", narrow, std::size(narrow))
            : ConvertInstallationText(text, narrow);
    exchange::WriteReply(access.request, narrow, static_cast<DWORD>(size + 1));
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

struct ConfigCommand
{
    LONG number;
    Reads reads;
    Reply reply;
    LONG (*run)(const Access&) noexcept;
};

constexpr ConfigCommand kCommands[] = {
    {PM_GET_INT_FROM_CONFIG, Reads::KeyAlone, Reply::Required, GetInt},
    {PM_GET_STR_FROM_CONFIG, Reads::KeyAlone, Reply::Required, GetString},
    {PM_PUT_INT_INTO_CONFIG, Reads::KeyAlone, Reply::None, PutInt},
    {PM_PUT_STR_INTO_CONFIG, Reads::KeyAndText, Reply::None, PutString},
};

LONG RunOnInstallationFile(const ConfigCommand& command, const PM_Request& request,
                           const ConfigData& data) noexcept
{
    CORVLCfg file;
    if (file.Initialize(data.file) == 0)
    {
        PmLog(L"Initialize public configure file %sfailed.", data.file);
        return TRX_OPERATION_FAIL;
    }
    return command.run({request, data, file});
}

LONG RunOnProfileFile(const ConfigCommand& command, const PM_Request& request,
                      const ConfigData& data) noexcept
{
    CORVLProfile file;
    if (file.Initialize(data.file, nullptr, 0) == 0)
    {
        return TRX_OPERATION_FAIL;
    }
    return command.run({request, data, file});
}

} // namespace

int ConvertConfigData(const PM_Config_Data& wire, ConfigData& local) noexcept
{
    struct Field
    {
        const char (&narrow)[256];
        wchar_t (&wide)[256];
    };
    const Field fields[] = {
        {wire.file, local.file},
        {wire.section, local.section},
        {wire.item, local.item},
        {wire.stringValue, local.stringValue},
    };
    for (const Field& field : fields)
    {
        text::ToWide(field.narrow, std::size(field.narrow), field.wide, std::size(field.wide));
    }
    local.fileType = wire.fileType;
    local.defaultValue = wire.defaultValue;
    local.value = wire.value;
    return 1;
}

LONG ProcessConfigFunc(const PM_Request& request, LONG number) noexcept
{
    const auto* const command =
        std::find_if(std::begin(kCommands), std::end(kCommands),
                     [number](const ConfigCommand& row) { return row.number == number; });
    if (command == std::end(kCommands))
    {
        return TRX_UNKNOWN_COMMAND;
    }
    const exchange::Terms terms{exchange::Length::Exact, sizeof(PM_Config_Data), command->reply};
    if (!exchange::IsLengthRight(request, terms) || !exchange::ArePointersRight(request, terms))
    {
        return TRX_OPERATION_FAIL;
    }

    ConfigData data;
    if (ConvertConfigData(exchange::ReadPayload<PM_Config_Data>(request), data) == 0)
    {
        PmLog(L"ConvertConfigData failed\n");
        return TRX_OPERATION_FAIL;
    }
    PmLog(L"File=%s, Sec=%s, Item=%s, val=%d \n", data.file, data.section, data.item, data.value);
    if (!IsAccessible(data, command->reads))
    {
        return TRX_OPERATION_FAIL;
    }
    switch (data.fileType)
    {
    case kInstallationFile:
        return RunOnInstallationFile(*command, request, data);
    case kProfileFile:
        return RunOnProfileFile(*command, request, data);
    default:
        return TRX_OPERATION_FAIL;
    }
}
