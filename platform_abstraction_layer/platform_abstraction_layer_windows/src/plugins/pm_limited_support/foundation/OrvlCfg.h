// foundation/OrvlCfg.h
//
// One configuration file of the installation, found through the registry. Nothing is kept in memory: every
// read and write goes to the file through the system's profile functions.
#pragma once

#include "foundation/OrvlBase.h"
#include "foundation/Text.h"

class ORVL_API CORVLCfg : public CORVLBase
{
public:
    CORVLCfg() noexcept;
    CORVLCfg(const CORVLCfg&) noexcept;
    CORVLCfg& operator=(const CORVLCfg&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CORVLCfg() override;

    /// Takes the folder from "CfgPath" and joins `file`. 1 when the file exists. 0 when it doesn't, with the
    /// path set, or when the registry can't be read or the path doesn't fit, with the path as it was. Creates
    /// nothing.
    [[nodiscard]] int Initialize(const wchar_t* file) noexcept;

    /// The same operation under a second name.
    [[nodiscard]] int InitializeInstallPath(const wchar_t* file) noexcept;

    const wchar_t* GetFullPath() noexcept;

    /// The folder of the module "ORVLDLL.DLL" without a final separator; `size` in characters. Null when
    /// the process has no such module or the path doesn't fit.
    [[nodiscard]] wchar_t* GetDllPath(wchar_t* buffer, int size) noexcept;

    /// The parent of that folder, or null.
    wchar_t* GetHomePath(wchar_t* buffer, int size) noexcept;

    int GetInt(const wchar_t* section, const wchar_t* key, int defaultValue) noexcept;

    /// Writes `value` in decimal. Nonzero on success.
    int PutInt(const wchar_t* section, const wchar_t* key, int value) noexcept;

    /// The characters copied; `size` in characters.
    int GetString(const wchar_t* section, const wchar_t* key, const wchar_t* defaultValue, wchar_t* buffer,
                  int size) noexcept;

    /// The same into an array; empty without a value, and where the system refuses.
    template <std::size_t N>
    int GetString(const wchar_t* section, const wchar_t* key, wchar_t (&buffer)[N]) noexcept
    {
        buffer[0] = L'\0';
        return GetString(section, key, nullptr, buffer, static_cast<int>(N));
    }

    /// Nonzero on success. A null `value` removes the key, a null `key` the section.
    int PutString(const wchar_t* section, const wchar_t* key, const wchar_t* value) noexcept;

    /// The number behind a lower-case "0x", or `defaultValue` for every other text.
    int GetHex(const wchar_t* section, const wchar_t* key, int defaultValue) noexcept;

    /// Writes `value` as "0x" and hexadecimal digits. Nonzero on success.
    int PutHex(const wchar_t* section, const wchar_t* key, int value) noexcept;

protected:
    wchar_t m_szFullPath[text::kPathCapacity]{};
};
