// agents/HwSBX.h
//
// Switches on-board functions of the chipset off and on, each by one bit. Which chipset it is and where a
// function's bit lies is configured in the file "SBXCfg.ini" alone.
#pragma once

#include "agents/HwXA.h"
#include "foundation/Text.h"

class CORVLCfg;

/// `Setup(1)`, then the function operations. Anything wrong in the file is 0x80004005; what the hardware
/// access refuses comes back as its code.
class ORVL_API CHwSBX : public CHwXA
{
public:
    CHwSBX() noexcept;
    CHwSBX(const CHwSBX&) noexcept;
    CHwSBX& operator=(const CHwSBX&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CHwSBX() override;

    /// Opens the channel and, with `identify` nonzero, finds the chipset. 1 when it is known already.
    [[nodiscard]] LONG Setup(int identify) noexcept;

    /// Writes the bit of the function of that name, case-sensitive.
    [[nodiscard]] LONG FunctionDisable(const wchar_t* name, int disable) noexcept;

    /// `*disabled` becomes 1 or 0.
    [[nodiscard]] LONG GetFunctionDisable(const wchar_t* name, int* disabled) noexcept;

protected:
    wchar_t m_szChipset[text::kPathCapacity]{}; ///< empty until the chipset is known

private:
    class FunctionRegister;

    [[nodiscard]] LONG TestIdentification(CORVLCfg& file, const wchar_t* section, bool& matches) noexcept;
};
