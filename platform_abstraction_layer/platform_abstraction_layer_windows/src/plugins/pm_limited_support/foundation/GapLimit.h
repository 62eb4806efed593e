// foundation/GapLimit.h
//
// The end of a walk through numbered entries of a file whose count can't be trusted.
#pragma once

/// Entries that a file numbers are as many as a count in it says. A damaged count would make a walk through
/// them last for hours, so a walk gives up after a long run of entries that aren't there.
class GapLimit
{
public:
    /// Notes one entry; true when the walk is to end.
    bool IsReached(bool entryIsAbsent) noexcept
    {
        m_gap = entryIsAbsent ? m_gap + 1 : 0;
        return m_gap >= kLongestGap;
    }

private:
    static constexpr int kLongestGap = 10000;

    int m_gap = 0;
};
