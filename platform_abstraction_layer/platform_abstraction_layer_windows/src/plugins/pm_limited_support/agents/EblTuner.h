// agents/EblTuner.h
//
// The tuner of nothing: the three operations of a tuner with no subsystem behind them.
#pragma once

#include "foundation/OrvlBase.h"

class ORVL_API CEblTuner : public CORVLBase
{
public:
    CEblTuner() noexcept;
    CEblTuner(const CEblTuner&) noexcept;
    CEblTuner& operator=(const CEblTuner&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CEblTuner() override;

    /// All three give 0.
    ULONG CheckSupportStatus() noexcept;
    int GetEblLevel() noexcept;
    int SetEblLevel(int level) noexcept;
};
