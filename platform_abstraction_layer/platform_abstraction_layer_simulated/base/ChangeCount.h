// base/ChangeCount.h
//
// How often the files of the notebook have changed: a number that all its processes share in memory. Who has
// read a file needs no second look at the file system while the number stays. What is changed behind the
// platform's back, with an editor, isn't counted and is noticed within a millisecond.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace simulated
{

class ChangeCount
{
public:
    /// Chooses the notebook, also when another has been made in the same folder.
    static void Use(const std::string& folder);

    /// The count, different for each notebook that was chosen. Never the same twice while the notebook has no
    /// folder "objects" in which the number can be shared.
    static std::uint64_t Value();

    /// Counts a change. Comes after it.
    static void Announce();
};

/// When something was last read from the notebook's files.
class LastLook
{
public:
    /// True when nothing can have changed since, but for what an editor did in the last millisecond.
    bool IsCurrent() const;

    /// Notes that the reading begins.
    void Begin();

private:
    std::uint64_t m_count = 0;
    std::chrono::steady_clock::time_point m_time;
};

} // namespace simulated
