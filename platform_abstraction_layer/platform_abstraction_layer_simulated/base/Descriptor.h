// base/Descriptor.h
//
// Owner of a native descriptor.
#pragma once

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace simulated
{

/// Closes what it holds at the end, and leaves `errno` alone then.
class Descriptor
{
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int number) noexcept : m_number(number)
    {
    }
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1))
    {
    }
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(m_number, other.m_number);
        return *this;
    }
    ~Descriptor()
    {
        if (IsOpen())
        {
            const int kept = errno;
            close(m_number);
            errno = kept;
        }
    }

    bool IsOpen() const noexcept
    {
        return m_number >= 0;
    }
    int Get() const noexcept
    {
        return m_number;
    }

private:
    int m_number = -1;
};

} // namespace simulated
