// agents/OsWin.h
//
// Static helpers over the operating system: its generation, desktop composition, registry values.
#pragma once

#include "foundation/OrvlBase.h"

/// No object is made of it: `GetVersion` stays abstract.
class ORVL_API COsWin : public CORVLBase
{
public:
    COsWin() noexcept;
    COsWin(const COsWin&) noexcept;
    COsWin& operator=(const COsWin&) noexcept;
    ~COsWin() override;

    /// 1 from major version 6 on, else 0.
    static int IsVista() noexcept;

    /// Loads "dwmapi.dll", once for the process. 0 or 0x80004005.
    [[nodiscard]] static LONG LoadDwmLibrary() noexcept;

    /// Switches desktop composition. The system's result, or 0x80004005 where it has none.
    static LONG SetAero(int enable) noexcept;

    /// Tells whether desktop composition is on. The system's result, or 0x80004005 where it has none.
    [[nodiscard]] static LONG IsAeroOn(int* enabled) noexcept;

    /// Does nothing. Always 0.
    static LONG SetLinkPowerMgr(int mode) noexcept;

    /// Reads a value. 0x80004005 for a null root, subkey, name or type; a registry failure gives the last
    /// error, which the registry functions needn't set, so the result can be 0 then.
    [[nodiscard]] static LONG ReadRegValue(HKEY root, const wchar_t* subkey, const wchar_t* name, ULONG* type,
                                           unsigned char* data, ULONG* size) noexcept;

    /// Writes a value of an existing key, under the rules of `ReadRegValue`; no pointer may be null.
    /// `reserved` isn't used.
    [[nodiscard]] static LONG WriteRegValue(HKEY root, const wchar_t* subkey, const wchar_t* name,
                                            ULONG reserved, ULONG* type, void* data, ULONG* size) noexcept;

protected:
    /// A function of the composition library, or null with a line in the log.
    static FARPROC FindDwmFunction(const char* name) noexcept;

    static HINSTANCE m_hDwmLibrary; ///< null until it is loaded; never freed
};
