// foundation/EntryLimit.h
//
// How far the counts of numbered entries in files are believed.
#pragma once

#include <algorithm>

/// The entries that walks through files may look at together. A damaged count, or the product of two, would
/// keep a request busy for hours; what a walk takes here is gone for the next one with the same limit.
class EntryLimit
{
public:
    /// The default is above what any plausible file holds.
    explicit EntryLimit(int most = 20000) noexcept : m_left(most)
    {
    }

    /// How many of `count` entries a walk may look at. A negative count is none.
    int Take(int count) noexcept
    {
        const int taken = std::clamp(count, 0, m_left);
        m_left -= taken;
        return taken;
    }

    /// The same for a list without gaps: a count that only damage explains is believed as far as
    /// `isThere(entry)` holds from the first entry on.
    template <class IsThere>
    int Take(int count, IsThere isThere) noexcept
    {
        constexpr int kManyEntries = 1000;
        if (count <= kManyEntries)
        {
            return Take(count);
        }
        int present = 0;
        while (present < std::min(count, m_left) && isThere(present))
        {
            ++present;
        }
        return Take(present);
    }

private:
    int m_left;
};
