// modules/kernel32/WakeWord.cpp
//
// The wake word in the file "objects/.wake" of the notebook, mapped by every process that waits there.

#include "modules/kernel32/WakeWord.h"

#include "machine/Machine.h"
#include "modules/kernel32/SharedPages.h"

#include <fcntl.h>
#include <filesystem>
#include <linux/futex.h>
#include <mutex>
#include <new>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace simulated
{

namespace
{

constexpr const char* kFile = "/.wake";

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

class PrivateWord final : public WakeWord
{
public:
    PrivateWord() : WakeWord(m_storage)
    {
    }

private:
    std::atomic<std::uint32_t> m_storage{0};
};

class SharedWord final : public WakeWord
{
public:
    SharedWord(SharedPages pages, const struct stat& file)
        : WakeWord(*static_cast<std::atomic<std::uint32_t>*>(pages.Address())), m_pages(std::move(pages)),
          m_device(file.st_dev), m_inode(file.st_ino)
    {
    }

    bool IsOf(const struct stat& file) const noexcept
    {
        return file.st_dev == m_device && file.st_ino == m_inode;
    }

private:
    SharedPages m_pages;
    dev_t m_device;
    ino_t m_inode;
};

std::shared_ptr<SharedWord> OpenWord(const std::string& folder)
{
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const Descriptor file(open((folder + kFile).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    struct stat status = {};
    if (!file.IsOpen() || ftruncate(file.Get(), kPageSize) != 0 || fstat(file.Get(), &status) != 0)
    {
        return nullptr;
    }
    SharedPages pages(file.Get(), 0, kPageSize, true);
    return pages.Address() == nullptr ? nullptr : std::make_shared<SharedWord>(std::move(pages), status);
}

struct WakeState
{
    std::mutex mutex;
    std::string folder;
    std::shared_ptr<SharedWord> shared;
    std::shared_ptr<WakeWord> ownWord = std::make_shared<PrivateWord>();
};

WakeState& TheWakeState()
{
    static WakeState& state = *new WakeState;
    return state;
}

} // namespace

std::shared_ptr<WakeWord> WakeWord::Current()
{
    const std::string folder = Machine::PathOf("objects");
    WakeState& state = TheWakeState();
    const std::lock_guard lock(state.mutex);
    // A notebook can be thrown away and another made in its place, so the name alone doesn't do.
    struct stat status = {};
    const bool isCurrent = state.shared != nullptr && state.folder == folder &&
                           stat((folder + kFile).c_str(), &status) == 0 && state.shared->IsOf(status);
    if (!isCurrent)
    {
        state.shared = OpenWord(folder);
        state.folder = folder;
    }
    return state.shared == nullptr ? state.ownWord : state.shared;
}

std::uint32_t WakeWord::Value() const noexcept
{
    return m_word.load(std::memory_order_acquire);
}

void WakeWord::Announce() noexcept
{
    m_word.fetch_add(1, std::memory_order_acq_rel);
    syscall(SYS_futex, &m_word, FUTEX_WAKE, INT32_MAX, nullptr, nullptr, 0);
}

void WakeWord::Sleep(std::uint32_t seen, std::uint64_t milliseconds) noexcept
{
    const timespec span{static_cast<std::time_t>(milliseconds / 1000),
                        static_cast<long>(milliseconds % 1000) * 1000000};
    syscall(SYS_futex, &m_word, FUTEX_WAIT, seen, &span, nullptr, 0);
}

} // namespace simulated
