// plugin/ConfigCommands.h
//
// The commands on one key of a configuration file, one function each, and the wide form of their payload.
#pragma once

#include "foundation/OrvlCfg.h"
#include "plugin/HostRecords.h"
#include "plugin/WireRecords.h"

constexpr LONG kInstallationFile = 0;
constexpr LONG kProfileFile = 1;

/// `PM_Config_Data` with its texts in wide characters.
struct ConfigData
{
    LONG fileType;
    wchar_t file[256];
    wchar_t section[256];
    wchar_t item[256];
    wchar_t stringValue[256];
    LONG defaultValue;
    LONG value;
};

namespace config_commands
{

/// An opened file and what a request wants of it.
struct Access
{
    const PM_Request& request;
    const ConfigData& data;
    CORVLCfg& file;
};

/// Carries the request out and gives the result code.
using Function = LONG (*)(const Access& access) noexcept;

LONG GetInt(const Access& access) noexcept;
LONG GetString(const Access& access) noexcept;
LONG PutInt(const Access& access) noexcept;
LONG PutString(const Access& access) noexcept;

} // namespace config_commands

/// Converts the record; a text that doesn't end within its field is cut at 255 bytes.
void ConvertConfigData(const PM_Config_Data& wire, ConfigData& local) noexcept;
