// tests/acceptance/GuardedBytes.cpp
//
// Guards round a buffer.

#include "acceptance/GuardedBytes.h"

#include <algorithm>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(address, size) static_cast<void>(address)
#define ASAN_UNPOISON_MEMORY_REGION(address, size) static_cast<void>(address)
#endif

GuardedBytes::GuardedBytes(std::size_t size, std::byte fill)
    : m_size(size), m_storage(size + 2 * kGuard, kGuardByte)
{
    std::fill_n(Data(), size, fill);
    Forbid();
}

GuardedBytes::GuardedBytes(std::span<const std::byte> content) : GuardedBytes(content.size())
{
    std::copy(content.begin(), content.end(), Data());
}

GuardedBytes::~GuardedBytes()
{
    Allow();
}

void GuardedBytes::Forbid()
{
    ASAN_POISON_MEMORY_REGION(m_storage.data(), kGuard);
    ASAN_POISON_MEMORY_REGION(Data() + m_size, kGuard);
}

void GuardedBytes::Allow()
{
    ASAN_UNPOISON_MEMORY_REGION(m_storage.data(), m_storage.size());
}

bool GuardedBytes::AreGuardsIntact()
{
    Allow();
    const auto isGuard = [](std::byte byte) { return byte == kGuardByte; };
    const bool intact = std::all_of(m_storage.begin(), m_storage.begin() + kGuard, isGuard) &&
                        std::all_of(m_storage.end() - kGuard, m_storage.end(), isGuard);
    Forbid();
    return intact;
}
