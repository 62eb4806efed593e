// modules/kernel32/KernelState.h
//
// The state of an event, a semaphore or a file mapping: a few words in a file below "objects" that every
// process with a handle maps, or for an unnamed object in a file without a name. What changes is one atomic
// word, so a killed process leaves nothing half done.
//
// A named object's file is held by a shared lock of each process that has a handle. The kernel gives the lock
// of a killed process back, and a file that nobody holds is no object any more: whoever meets it removes it.
#pragma once

#include "base/HandleTable.h"
#include "base/PlatformCall.h"
#include "base/SharedPages.h"

#include <winbase.h>

#include <atomic>
#include <memory>
#include <string>
#include <utility>

namespace simulated
{

/// The rights of a handle that asked for `access`, where `all` are those of its kind.
///
/// Known difference from Windows: of the generic rights only GENERIC_ALL stands for anything.
constexpr DWORD GrantedAccess(DWORD access, DWORD all) noexcept
{
    return (access & (GENERIC_ALL | MAXIMUM_ALLOWED)) != 0 ? all : access;
}

/// What a new object is to be.
struct NewState
{
    ObjectKind kind;
    std::uint32_t constant = 0; ///< event: 1 when it is reset by hand; semaphore: the highest count
    std::uint32_t word = 0;     ///< event: 1 when it is signalled; semaphore: the count
    std::uint64_t size = 0;     ///< mapping: its size in bytes
};

/// The head of an object's file, in a page of its own; a mapping's bytes follow from the second page on.
struct StateRecord
{
    std::uint32_t kind;              ///< offset 0
    std::uint32_t constant;          ///< offset 4
    std::uint64_t size;              ///< offset 8
    std::atomic<std::uint32_t> word; ///< offset 16: the part that changes
};
static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

class KernelState
{
public:
    /// A new object, or the one that has the name already, with ERROR_ALREADY_EXISTS. A null or empty name
    /// makes an unnamed one. ERROR_INVALID_HANDLE when another kind of object has the name.
    static Outcome<std::shared_ptr<KernelState>> Create(const wchar_t* name, const NewState& wanted);

    /// The object of this kind and name. ERROR_FILE_NOT_FOUND, ERROR_INVALID_HANDLE as above.
    static Outcome<std::shared_ptr<KernelState>> Open(const wchar_t* name, ObjectKind kind);

    /// Use the functions above. An unnamed object has no path.
    KernelState(Descriptor file, std::string path, SharedPages head);
    ~KernelState();
    KernelState(const KernelState&) = delete;
    KernelState& operator=(const KernelState&) = delete;

    ObjectKind Kind() const noexcept
    {
        return static_cast<ObjectKind>(Record().kind);
    }
    std::uint32_t Constant() const noexcept
    {
        return Record().constant;
    }
    std::uint64_t Size() const noexcept
    {
        return Record().size;
    }
    std::atomic<std::uint32_t>& Word() const noexcept
    {
        return Record().word;
    }
    /// The first `size` bytes of a mapping, in whole pages.
    SharedPages Map(std::size_t size, bool writable) const noexcept;

    /// True while the object's file is the one that lies at its path.
    bool IsInPlace() const noexcept;

private:
    StateRecord& Record() const noexcept
    {
        return *static_cast<StateRecord*>(m_head.Address());
    }

    Descriptor m_file;
    std::string m_path; ///< empty when the object has no name
    SharedPages m_head;
};

/// Adds to the trace whom a new object is open to and whether it is inherited, where the caller says so.
void NoteSecurity(PlatformCall& call, const SECURITY_ATTRIBUTES* attributes);

/// A handle to an object of class `Kind` on the state that was found or made, with the rights `access`. The
/// error of `found` is passed on, since it may accompany an object: ERROR_ALREADY_EXISTS.
template <class Kind>
Outcome<HANDLE> HandOut(Outcome<std::shared_ptr<KernelState>> found, DWORD access, const PlatformCall& call)
{
    if (found.value == nullptr)
    {
        return {nullptr, found.error};
    }
    return {HandleTable::Insert(std::make_shared<Kind>(std::move(found.value), access), call), found.error};
}

} // namespace simulated
