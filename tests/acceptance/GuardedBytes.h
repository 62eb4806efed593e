// tests/acceptance/GuardedBytes.h
//
// A buffer as a host may pass it: at an odd address, between memory that isn't its own.
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) static_cast<void>(address)
#define ASAN_UNPOISON_MEMORY_REGION(address, size) static_cast<void>(address)
#endif

/// `size` bytes between two guards. With the address sanitizer a read of a guard ends the test; without it
/// `AreGuardsIntact` still finds a write.
class GuardedBytes
{
public:
    explicit GuardedBytes(std::size_t size, std::byte fill = std::byte{0})
        : m_size(size), m_storage(size + 2 * kGuard, kGuardByte)
    {
        std::fill_n(Data(), size, fill);
        Forbid();
    }
    explicit GuardedBytes(std::span<const std::byte> content) : GuardedBytes(content.size())
    {
        std::copy(content.begin(), content.end(), Data());
    }
    ~GuardedBytes()
    {
        Allow();
    }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::byte* Data()
    {
        return m_storage.data() + kGuard;
    }

    /// False when a byte beside the buffer was written.
    bool AreGuardsIntact()
    {
        Allow();
        const std::vector<std::byte> guard(kGuard, kGuardByte);
        const bool intact = std::equal(guard.begin(), guard.end(), m_storage.data()) &&
                            std::equal(guard.begin(), guard.end(), Data() + m_size);
        Forbid();
        return intact;
    }

private:
    static constexpr std::size_t kGuard = 65;
    static constexpr std::byte kGuardByte{0xA5};

    void Forbid()
    {
        ASAN_POISON_MEMORY_REGION(m_storage.data(), kGuard);
        ASAN_POISON_MEMORY_REGION(Data() + m_size, kGuard);
    }
    void Allow()
    {
        ASAN_UNPOISON_MEMORY_REGION(m_storage.data(), m_storage.size());
    }

    std::size_t m_size;
    std::vector<std::byte> m_storage;
};
