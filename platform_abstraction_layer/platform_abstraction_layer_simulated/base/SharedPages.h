// base/SharedPages.h
//
// Owner of pages that processes share.
#pragma once

#include "base/Descriptor.h"

#include <cstddef>
#include <sys/mman.h>
#include <sys/types.h>
#include <utility>

namespace simulated
{

inline constexpr std::size_t kPageSize = 4096;

/// `size` rounded up to whole pages.
constexpr std::size_t InWholePages(std::size_t size) noexcept
{
    return (size + kPageSize - 1) / kPageSize * kPageSize;
}

/// Pages of a file, mapped until the end.
class SharedPages
{
public:
    SharedPages() noexcept = default;

    /// Maps `size` bytes from `offset` on, both whole pages; the address is null when that fails.
    SharedPages(int descriptor, std::size_t size, bool writable, off_t offset = 0) noexcept : m_size(size)
    {
        void* const address = mmap(nullptr, size, writable ? PROT_READ | PROT_WRITE : PROT_READ, MAP_SHARED,
                                   descriptor, offset);
        m_address = address == MAP_FAILED ? nullptr : address;
    }
    SharedPages(SharedPages&& other) noexcept
        : m_address(std::exchange(other.m_address, nullptr)), m_size(std::exchange(other.m_size, 0))
    {
    }
    SharedPages& operator=(SharedPages&& other) noexcept
    {
        std::swap(m_address, other.m_address);
        std::swap(m_size, other.m_size);
        return *this;
    }
    ~SharedPages()
    {
        if (m_address != nullptr)
        {
            munmap(m_address, m_size);
        }
    }

    void* Address() const noexcept
    {
        return m_address;
    }

private:
    void* m_address = nullptr;
    std::size_t m_size = 0;
};

} // namespace simulated
