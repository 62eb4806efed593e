// foundation/EntryLimit.h
//
// How far the counts of numbered entries in files are believed.
#pragma once

#include <algorithm>

/// How many entries several walks through files may read in total. A damaged count, or the product of two,
/// would keep a request busy for hours; what one walk takes is no longer there for the next.
class EntryLimit
{
public:
    /// The default is above what any plausible file holds.
    explicit EntryLimit(int most = 5000) noexcept : m_left(most)
    {
    }

    /// How many of `count` entries a walk may read. A negative count is none.
    [[nodiscard]] int Take(int count) noexcept
    {
        const int taken = std::clamp(count, 0, m_left);
        m_wasReached = m_wasReached || taken < count;
        m_left -= taken;
        return taken;
    }

    /// The same for a list without gaps: a count that only damage explains is believed as far as
    /// `isThere(entry)` holds from the first entry on. Those entries are read twice.
    template <class IsThere>
    [[nodiscard]] int Take(int count, IsThere isThere) noexcept
    {
        constexpr int kManyEntries = 1000;
        if (count <= kManyEntries)
        {
            return Take(count);
        }
        const int most = m_left / 2;
        int present = 0;
        while (present < std::min(count, most) && isThere(present))
        {
            ++present;
        }
        m_wasReached = m_wasReached || present == most;
        m_left -= 2 * present;
        return present;
    }

    /// True when a walk may have got fewer entries than there are.
    bool WasReached() const noexcept
    {
        return m_wasReached;
    }

private:
    int m_left;
    bool m_wasReached = false;
};
