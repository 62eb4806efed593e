// agents/DspxAgent.h
//
// The power features of the graphics driver as one level word, through the COM object that the driver
// installs:
//
//   bit 30      FRQG enabled
//   bit 29      ABR, second field
//   bit 28      ABR, first field
//   bit 26      LUMS enabled
//   bits 19..0  LUMS level, valid with bit 26
#pragma once

#include "foundation/OrvlBase.h"

struct PanelBridge;

/// An object initialises COM for its thread and uninitialises it at its end. A set-up object must not be
/// copied: a copy shares the interface without a reference of its own.
class ORVL_API CDspxAgent : public CORVLBase
{
public:
    CDspxAgent() noexcept;
    CDspxAgent(const CDspxAgent& other) noexcept;
    CDspxAgent& operator=(const CDspxAgent& other) noexcept;

    ULONG GetVersion() noexcept override;
    ~CDspxAgent() override;

    /// Once, or again after `Cleanup`. 0, COM's code, 0x80004001 when the driver has no power interface,
    /// 0x80070005 when it is locked, 0x80004005 otherwise.
    [[nodiscard]] LONG Setup() noexcept;

    /// Closes the power handle and lets the interface go. Always 0.
    LONG Cleanup() noexcept;

    /// The driver's capability word, unread, or 0 when it is unknown.
    ULONG CheckSupportStatus() noexcept;

    /// The level word, or -1. A feature that the driver doesn't have reads as off.
    int GetEblLevel() noexcept;

    /// Sets the three features. The word as given, or -1 with the earlier features already set; -1 as a
    /// word is refused. A feature that the driver doesn't have is skipped.
    [[nodiscard]] int SetEblLevel(int level) noexcept;

protected:
    PanelBridge* m_pInterface; ///< null when not set up
    ULONG m_nPowerHandle;      ///< valid while the interface is there
    bool m_bComInitialized;    ///< this object has to uninitialise COM; never copied

private:
    void ReleaseInterface() noexcept;
};
