// machine/CachedFile.h
//
// A text file of the machine that all processes share, parsed once for each state that it has been in. A
// change is seen by the next platform call in any process, whole or not at all, and not in the middle of a
// call.
#pragma once

#include "base/ChangeCount.h"
#include "base/PlatformCall.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"

#include <mutex>
#include <utility>

namespace simulated
{

/// `Content` has `void Load(const std::string& text)`, which parses the text, and
/// `std::string Text() const`. A file that isn't there counts as an empty one.
template <class Content>
class CachedFile
{
public:
    /// `part` is the file's path below the notebook's folder.
    explicit CachedFile(std::string part) : m_part(std::move(part))
    {
    }

    /// Returns what `look` returns for the content of the file.
    template <class Look>
    auto Read(Look look)
    {
        const std::lock_guard guard(m_mutex);
        if (m_checkedBy == 0 || m_checkedBy != PlatformCall::Current())
        {
            if (!m_lastLook.IsCurrent())
            {
                Refresh(Machine::PathOf(m_part));
            }
            m_checkedBy = PlatformCall::Current();
        }
        return look(std::as_const(m_content));
    }

    /// Lets `change` edit the content under the writers' lock. The result is written when it returns
    /// true; else it must leave what it found. False, with `errno` set, when the file can't be written.
    template <class Change>
    bool Edit(Change change)
    {
        const std::string path = Machine::PathOf(m_part);
        const FileLock lock(path);
        if (!lock.IsHeld())
        {
            return false;
        }
        const std::lock_guard guard(m_mutex);
        Refresh(path);
        if (!change(m_content))
        {
            return true;
        }
        const bool written = WriteWhole(path, m_content.Text());
        m_state = written ? StateOf(path) : FileState(); // without a state the content is loaded anew
        return written;
    }

private:
    void Refresh(const std::string& path)
    {
        // Count and state are taken before the reading: a change in between is noticed by the next look.
        m_lastLook.Begin();
        FileState now = StateOf(path);
        if (now != m_state)
        {
            m_content.Load(ReadWhole(path).value_or(std::string()));
            m_state = std::move(now);
        }
    }

    const std::string m_part;
    std::mutex m_mutex;
    LastLook m_lastLook;
    FileState m_state;
    std::uint64_t m_checkedBy = 0; ///< the platform call that looked last; 0 outside of all
    Content m_content;
};

} // namespace simulated
