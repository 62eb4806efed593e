// plugin/ConfigCommands.h
//
// The wide form of an access to a configuration file.
#pragma once

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

/// Converts the record; a text that doesn't end within its field is cut at 255 bytes. Always 1.
int ConvertConfigData(const PM_Config_Data& wire, ConfigData& local) noexcept;
