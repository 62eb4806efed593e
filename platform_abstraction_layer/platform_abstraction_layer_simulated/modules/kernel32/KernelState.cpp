// modules/kernel32/KernelState.cpp
//
// Making, finding and giving up the state of kernel objects. Names are looked up, made and removed under one
// lock of the notebook; what happens to an object afterwards needs none.
//
// Known differences from Windows: security descriptors are taken and not enforced, since all processes on a
// notebook are one person's; handles aren't inherited.

#include "modules/kernel32/KernelState.h"

#include "base/WholeFile.h"
#include "machine/Machine.h"
#include "modules/kernel32/ObjectNames.h"

#include <fcntl.h>
#include <filesystem>
#include <map>
#include <mutex>
#include <new>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <vector>

namespace simulated
{

namespace
{

using State = std::shared_ptr<KernelState>;
using Found = Outcome<State>;

constexpr const char* kLockedName = "/names";

// One state for each object however many handles this process has, so that it holds one lock and sees one
// address.
struct Registry
{
    std::mutex mutex;
    std::map<std::string, std::weak_ptr<KernelState>> states; ///< by path
};

Registry& TheRegistry()
{
    static Registry& registry = *new Registry;
    return registry;
}

std::string FolderLock(const std::string& path)
{
    return std::filesystem::path(path).parent_path().string() + kLockedName;
}

void Remember(const std::string& path, const std::shared_ptr<KernelState>& state)
{
    Registry& registry = TheRegistry();
    std::erase_if(registry.states, [](const auto& entry) { return entry.second.expired(); });
    registry.states[path] = state;
}

// States that must outlive the locks, since their destructors take one of them.
using Kept = std::vector<State>;

// The living object at `path`, or null. Removes the file of a dead one.
State FindLiving(const std::string& path, Kept& kept)
{
    const State& known = kept.emplace_back(TheRegistry().states[path].lock());
    if (known != nullptr && known->IsInPlace())
    {
        return known;
    }
    Descriptor file(open(path.c_str(), O_RDWR | O_CLOEXEC));
    if (!file.IsOpen())
    {
        return nullptr;
    }
    if (flock(file.Get(), LOCK_EX | LOCK_NB) == 0)
    {
        unlink(path.c_str());
        return nullptr;
    }
    if (flock(file.Get(), LOCK_SH | LOCK_NB) != 0)
    {
        return nullptr;
    }
    const State& joined =
        kept.emplace_back(std::make_shared<KernelState>(WakeWord::Current(), std::move(file), path));
    if (!joined->Join())
    {
        return nullptr;
    }
    Remember(path, joined);
    return joined;
}

Found MakeNew(const std::string& path, const NewState& wanted, Kept& kept)
{
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (!file.IsOpen() || flock(file.Get(), LOCK_SH) != 0)
    {
        return {nullptr, ERROR_ACCESS_DENIED};
    }
    const State& made =
        kept.emplace_back(std::make_shared<KernelState>(WakeWord::Current(), std::move(file), path));
    if (!made->Begin(wanted))
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    Remember(path, made);
    return {made, ERROR_SUCCESS};
}

// Looks `path` up and makes the object if `wanted` says so.
Found LookUp(const std::string& path, ObjectKind kind, const NewState* wanted)
{
    Kept kept;
    const std::lock_guard ownLock(TheRegistry().mutex);
    const FileLock lock(FolderLock(path));
    if (!lock.IsHeld())
    {
        return {nullptr, ERROR_PATH_NOT_FOUND};
    }
    const State& living = kept.emplace_back(FindLiving(path, kept));
    if (living == nullptr)
    {
        return wanted == nullptr ? Found{nullptr, ERROR_FILE_NOT_FOUND} : MakeNew(path, *wanted, kept);
    }
    if (living->Kind() != kind)
    {
        return {nullptr, ERROR_INVALID_HANDLE};
    }
    return {living, static_cast<DWORD>(wanted == nullptr ? ERROR_SUCCESS : ERROR_ALREADY_EXISTS)};
}

Found Named(const wchar_t* name, ObjectKind kind, const NewState* wanted)
{
    const Outcome<std::string> file = ObjectFileName(name);
    if (file.error != ERROR_SUCCESS)
    {
        return {nullptr, file.error};
    }
    WakeWord::Current(); // makes the folder
    return LookUp(Machine::PathOf("objects") + '/' + file.value, kind, wanted);
}

} // namespace

Found KernelState::Create(const wchar_t* name, const NewState& wanted)
{
    if (name != nullptr && *name != 0)
    {
        return Named(name, wanted.kind, &wanted);
    }
    Descriptor file(wanted.kind == ObjectKind::Mapping ? memfd_create("mapping", MFD_CLOEXEC) : -1);
    auto made = std::make_shared<KernelState>(WakeWord::Current(), std::move(file), std::string());
    if (!made->Begin(wanted))
    {
        return {nullptr, ERROR_NOT_ENOUGH_MEMORY};
    }
    return {std::move(made), ERROR_SUCCESS};
}

Found KernelState::Open(const wchar_t* name, ObjectKind kind)
{
    return Named(name, kind, nullptr);
}

KernelState::KernelState(std::shared_ptr<WakeWord> wake, Descriptor file, std::string path)
    : m_wake(std::move(wake)), m_file(std::move(file)), m_path(std::move(path))
{
}

KernelState::~KernelState()
{
    if (m_path.empty())
    {
        return;
    }
    // The last process to give the object up removes its file; until the lock is free, another may join it.
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

bool KernelState::Join() noexcept
{
    if (!m_file.IsOpen())
    {
        return true;
    }
    m_head = SharedPages(m_file.Get(), 0, kPageSize, true);
    if (m_head.Address() == nullptr)
    {
        return false;
    }
    m_record = static_cast<StateRecord*>(m_head.Address());
    return true;
}

bool KernelState::Begin(const NewState& wanted) noexcept
{
    const auto length = static_cast<off_t>(kPageSize + InWholePages(static_cast<std::size_t>(wanted.size)));
    if ((m_file.IsOpen() && ftruncate(m_file.Get(), length) != 0) ||
        (wanted.kind == ObjectKind::Mapping && !m_file.IsOpen()) || !Join())
    {
        return false;
    }
    m_record->kind = static_cast<std::uint32_t>(wanted.kind);
    m_record->constant = wanted.constant;
    m_record->size = wanted.size;
    m_record->word.store(wanted.word, std::memory_order_release);
    return true;
}

SharedPages KernelState::Map(std::uint64_t offset, std::size_t size, bool writable) const noexcept
{
    return SharedPages(m_file.Get(), static_cast<off_t>(kPageSize + offset), size, writable);
}

} // namespace simulated
