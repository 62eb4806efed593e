// agents/DisplayAgent.h
//
// The display as a tuner. It has no levels.
#pragma once

#include "foundation/OrvlBase.h"

class ORVL_API CDisplayAgent : public CORVLBase
{
public:
    CDisplayAgent() noexcept;
    CDisplayAgent(const CDisplayAgent&) noexcept;
    CDisplayAgent& operator=(const CDisplayAgent&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CDisplayAgent() override;

    /// 0: nothing is supported.
    ULONG CheckSupportStatus() noexcept;

    /// Both give -1.
    int GetEblLevel() noexcept;
    int SetEblLevel(int level) noexcept;
};
