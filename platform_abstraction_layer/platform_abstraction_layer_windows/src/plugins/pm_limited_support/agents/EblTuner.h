// agents/EblTuner.h
//
// A no-op tuner: the three operations of a tuner without a subsystem behind them.
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
