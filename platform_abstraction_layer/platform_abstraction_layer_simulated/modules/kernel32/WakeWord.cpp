// modules/kernel32/WakeWord.cpp
//
// The wake word in the file "objects/.wake" of the notebook, mapped by every process that waits there.

#include "modules/kernel32/WakeWord.h"

#include "machine/Machine.h"

#include <fcntl.h>
#include <filesystem>
#include <linux/futex.h>
#include <mutex>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <system_error>
#include <unistd.h>

namespace simulated
{

namespace
{

static_assert(std::atomic<std::uint32_t>::is_always_lock_free);

struct WakeState
{
    std::mutex mutex;
    std::string path;
    struct stat file = {}; ///< zeros without a notebook
    std::shared_ptr<WakeWord> word;
};

WakeState& TheWakeState()
{
    static WakeState& state = *new WakeState;
    return state;
}

std::shared_ptr<WakeWord> OpenWord(const std::string& path)
{
    std::error_code ignored;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), ignored);
    Descriptor file(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    const auto makeRoom = [&file] { return file.IsOpen() && ftruncate(file.Get(), kPageSize) == 0; };
    if (!makeRoom())
    {
        file = Descriptor(memfd_create("wake", MFD_CLOEXEC));
        makeRoom();
    }
    return std::make_shared<WakeWord>(SharedPages(file.Get(), kPageSize, true));
}

} // namespace

std::shared_ptr<WakeWord> WakeWord::Current()
{
    WakeState& state = TheWakeState();
    const std::string path = Machine::PathOf("objects/.wake");
    const std::lock_guard lock(state.mutex);
    // A notebook can be deleted and another made in its place, so the name alone isn't enough.
    struct stat now = {};
    stat(path.c_str(), &now);
    if (state.word == nullptr || state.path != path || state.file.st_dev != now.st_dev ||
        state.file.st_ino != now.st_ino)
    {
        state.word = OpenWord(path);
        state.path = path;
        state.file = {};
        stat(path.c_str(), &state.file);
    }
    return state.word;
}

std::uint32_t WakeWord::Value() const noexcept
{
    return Word().load(std::memory_order_acquire);
}

void WakeWord::Announce() noexcept
{
    Word().fetch_add(1, std::memory_order_acq_rel);
    syscall(SYS_futex, &Word(), FUTEX_WAKE, INT32_MAX, nullptr, nullptr, 0);
}

void WakeWord::Sleep(std::uint32_t seen, std::uint64_t milliseconds) noexcept
{
    const timespec span{static_cast<std::time_t>(milliseconds / 1000),
                        static_cast<long>(milliseconds % 1000) * 1000000};
    syscall(SYS_futex, &Word(), FUTEX_WAIT, seen, &span, nullptr, 0);
}

} // namespace simulated
