// base/Remembered.h
//
// What was found out about files, kept until one of them changes.
#pragma once

#include "base/ChangeCount.h"

#include <cstddef>
#include <map>
#include <mutex>
#include <string>

namespace simulated
{

template <class Value>
class Remembered
{
public:
    /// What `lookUp` returned for `key`; it is called where nothing is remembered or anything has changed.
    template <class LookUp>
    Value Find(const std::string& key, LookUp lookUp)
    {
        const std::lock_guard lock(m_mutex);
        const auto known = m_entries.find(key);
        if (known != m_entries.end() && known->second.lastLook.IsCurrent())
        {
            return known->second.value;
        }
        if (m_entries.size() >= kMostEntries)
        {
            m_entries.clear();
        }
        LastLook now;
        now.Begin();
        return m_entries.insert_or_assign(key, Entry{now, lookUp()}).first->second.value;
    }

private:
    static constexpr std::size_t kMostEntries = 100;

    struct Entry
    {
        LastLook lastLook;
        Value value;
    };

    std::mutex m_mutex;
    std::map<std::string, Entry> m_entries;
};

} // namespace simulated
