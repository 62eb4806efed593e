// modules/kernel32/KernelState.cpp
//
// Creates, finds and releases the state of kernel objects. Names are looked up, made and removed under one
// lock of the notebook; what happens to an object afterwards needs none.
//
// Known differences from Windows: security descriptors are taken and not enforced, since all processes on a
// notebook are one person's; handles aren't inherited.

#include "modules/kernel32/KernelState.h"

#include "base/Text.h"
#include "base/WholeFile.h"
#include "machine/Machine.h"
#include "modules/kernel32/WakeWord.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <map>
#include <mutex>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>

namespace simulated
{

namespace
{

using State = std::shared_ptr<KernelState>;
using Found = Outcome<State>;

// One state for each object however many handles this process has, so that it holds one lock and sees one
// address.
struct States
{
    std::mutex mutex;
    std::map<std::string, std::weak_ptr<KernelState>> byPath;
};

States& TheStates()
{
    static States& states = *new States;
    return states;
}

std::string FolderLock(const std::string& path)
{
    return std::filesystem::path(path).parent_path().string() + "/names";
}

// The state in `file`, which is made as `wanted` says where that isn't null; null when there is no room.
State StateIn(Descriptor file, const std::string& path, const NewState* wanted)
{
    const std::size_t size = wanted == nullptr ? 0 : static_cast<std::size_t>(wanted->size);
    if (wanted != nullptr && ftruncate(file.Get(), static_cast<off_t>(kPageSize + InWholePages(size))) != 0)
    {
        return nullptr;
    }
    SharedPages head(file.Get(), kPageSize, true);
    auto* const record = static_cast<StateRecord*>(head.Address());
    if (record == nullptr)
    {
        return nullptr;
    }
    if (wanted != nullptr)
    {
        record->kind = static_cast<std::uint32_t>(wanted->kind);
        record->constant = wanted->constant;
        record->size = size;
        record->word.store(wanted->word, std::memory_order_release);
    }
    return std::make_shared<KernelState>(std::move(file), path, std::move(head));
}

// The living object at `path`, or null. Removes the file of a dead one.
State Join(const std::string& path)
{
    Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0)
    {
        unlink(path.c_str());
        return nullptr;
    }
    return file.IsOpen() && flock(file.Get(), LOCK_SH | LOCK_NB) == 0
               ? StateIn(std::move(file), path, nullptr)
               : nullptr;
}

State Make(const std::string& path, const NewState& wanted)
{
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    return file.IsOpen() && flock(file.Get(), LOCK_SH) == 0 ? StateIn(std::move(file), path, &wanted)
                                                            : nullptr;
}

// Looks `path` up and makes the object if `wanted` isn't null.
Found LookUp(const std::string& path, ObjectKind kind, const NewState* wanted)
{
    // Both outlive the locks, since the end of a state takes one of them.
    State known;
    State living;
    States& states = TheStates();
    const std::lock_guard ownLock(states.mutex);
    const FileLock lock(FolderLock(path));
    if (!lock.IsHeld())
    {
        return {nullptr, ERROR_PATH_NOT_FOUND};
    }
    known = states.byPath[path].lock();
    living = known != nullptr && known->IsInPlace() ? known : Join(path);
    const bool isNew = living == nullptr;
    if (isNew && wanted == nullptr)
    {
        return {nullptr, ERROR_FILE_NOT_FOUND};
    }
    living = isNew ? Make(path, *wanted) : living;
    if (living == nullptr)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    std::erase_if(states.byPath, [](const auto& entry) { return entry.second.expired(); });
    states.byPath[path] = living;
    if (living->Kind() != kind)
    {
        return {nullptr, ERROR_INVALID_HANDLE};
    }
    return {living, static_cast<DWORD>(isNew || wanted == nullptr ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS)};
}

// Object names tell case apart and hold any character but a backslash behind the namespace. All processes of
// the notebook are in one session, so a name without a namespace is a local one.
Found Named(const wchar_t* name, ObjectKind kind, const NewState* wanted)
{
    constexpr std::string_view kGlobal = "Global\\";
    constexpr std::string_view kLocal = "Local\\";
    if (name == nullptr)
    {
        return {nullptr, ERROR_INVALID_PARAMETER};
    }
    std::string plain = ToUtf8(name);
    const bool isGlobal = plain.starts_with(kGlobal);
    plain.erase(0, isGlobal ? kGlobal.size() : plain.starts_with(kLocal) ? kLocal.size() : 0);
    if (plain.empty() || plain.find('\\') != std::string::npos)
    {
        return {nullptr, ERROR_PATH_NOT_FOUND};
    }
    // A slash, which a file's name can't have, becomes a backslash, which an object's can't.
    std::replace(plain.begin(), plain.end(), '/', '\\');
    WakeWord::Current(); // makes the folder
    return LookUp(Machine::PathOf(isGlobal ? "objects/global." : "objects/local.") + plain, kind, wanted);
}

} // namespace

Found KernelState::Create(const wchar_t* name, const NewState& wanted)
{
    if (name != nullptr && *name != 0)
    {
        return Named(name, wanted.kind, &wanted);
    }
    State made = StateIn(Descriptor(memfd_create("object", MFD_CLOEXEC)), {}, &wanted);
    const bool isMade = made != nullptr;
    return {std::move(made), static_cast<DWORD>(isMade ? ERROR_SUCCESS : ERROR_NOT_ENOUGH_MEMORY)};
}

Found KernelState::Open(const wchar_t* name, ObjectKind kind)
{
    return Named(name, kind, nullptr);
}

KernelState::KernelState(Descriptor file, std::string path, SharedPages head)
    : m_file(std::move(file)), m_path(std::move(path)), m_head(std::move(head))
{
}

KernelState::~KernelState()
{
    if (m_path.empty())
    {
        return;
    }
    // The last process to release the object removes its file; until the lock is free, another may open it.
    const FileLock lock(FolderLock(m_path));
    if (lock.IsHeld() && flock(m_file.Get(), LOCK_EX | LOCK_NB) == 0 && IsInPlace())
    {
        unlink(m_path.c_str());
    }
}

bool KernelState::IsInPlace() const noexcept
{
    struct stat own = {};
    struct stat there = {};
    return fstat(m_file.Get(), &own) == 0 && stat(m_path.c_str(), &there) == 0 &&
           own.st_dev == there.st_dev && own.st_ino == there.st_ino;
}

SharedPages KernelState::Map(std::size_t size, bool writable) const noexcept
{
    return SharedPages(m_file.Get(), size, writable, kPageSize);
}

void NoteSecurity(PlatformCall& call, const SECURITY_ATTRIBUTES* attributes)
{
    if (attributes != nullptr)
    {
        const std::string size = attributes->nLength == sizeof *attributes ? "" : "of a wrong size, ";
        const std::string shown = size +
                                  (attributes->lpSecurityDescriptor == nullptr ? "default" : "descriptor") +
                                  (attributes->bInheritHandle != FALSE ? ", inherited" : "");
        call.Arguments(shown.c_str());
    }
}

} // namespace simulated
