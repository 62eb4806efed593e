// tests/acceptance/GuardedBytes.h
//
// A buffer as a host may hand it over: at an odd address, with nothing of its own round it.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <vector>

/// `size` bytes between two guards. With the address sanitizer a read of a guard ends the test; without it
/// `AreGuardsIntact` still finds a write.
class GuardedBytes
{
public:
    explicit GuardedBytes(std::size_t size, std::byte fill = std::byte{0});
    explicit GuardedBytes(std::span<const std::byte> content);
    ~GuardedBytes();
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    std::byte* Data()
    {
        return m_storage.data() + kGuard;
    }
    std::size_t Size() const
    {
        return m_size;
    }
    std::span<std::byte> Bytes()
    {
        return {Data(), m_size};
    }

    /// False when a byte beside the buffer was written.
    bool AreGuardsIntact();

private:
    static constexpr std::size_t kGuard = 65;
    static constexpr std::byte kGuardByte{0xA5};

    void Forbid();
    void Allow();

    std::size_t m_size;
    std::vector<std::byte> m_storage;
};
