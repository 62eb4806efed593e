// agents/CpuAgent.h
//
// The processor's performance as a percentage of its top speed, reached by a bus ratio with its voltage and
// by the duty cycle of the clock, through model-specific registers.
#pragma once

#include "foundation/OrvlBase.h"

class ORVL_API CCpuAgent : public CORVLBase
{
public:
    CCpuAgent() noexcept;
    CCpuAgent(const CCpuAgent&) noexcept;
    CCpuAgent& operator=(const CCpuAgent&) noexcept;

    ULONG GetVersion() noexcept override;
    ~CCpuAgent() override;

    /// Opens the channel and reads the processor's range. 1, or 0 on failure, which leaves the object as it
    /// was but closes the channel below major version 6.
    [[nodiscard]] int Initialize() noexcept;

    /// The present percentage, or -1.
    int GetEblLevel() noexcept;

    /// Goes to the lowest speed that reaches `level`, 1 to 100, and gives the percentage reached, which may
    /// stand above. -1 on failure, which can leave the ratio changed and the duty not, or only some cores.
    /// The calling thread stays bound to the last core written.
    [[nodiscard]] int SetEblLevel(int level) noexcept;

private:
    // What follows is asked of an initialised agent.
    ULONG GetCBRRange() noexcept;
    int CalcVID(int cbr) noexcept;
    [[nodiscard]] int SetCBR(int cbr) noexcept;
    int GetCBR() noexcept;
    int GetModulation() noexcept;
    [[nodiscard]] int SetModulation(int duty) noexcept;

    ULONG m_nMinCBR = 0;
    ULONG m_nMaxCBR = 0;
    ULONG m_nMinVID = 0;
    ULONG m_nMaxVID = 0;
    bool m_bInitialized = false;
};
