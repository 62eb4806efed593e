// fuzz/Input.h
//
// The bytes of an input, taken from the front, so that a person can write one by hand. Behind the end come
// zeros.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace fuzz
{

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_rest(data, size)
    {
    }

    bool IsEmpty() const
    {
        return m_rest.empty();
    }

    std::uint8_t Byte()
    {
        return Number<std::uint8_t>();
    }

    /// Little-endian.
    template <class Integer>
    Integer Number()
    {
        Integer number = 0;
        const std::span<const std::uint8_t> bytes = Take(sizeof number);
        std::memcpy(&number, bytes.data(), bytes.size());
        return number;
    }

    /// A length byte and as many bytes, or what is left of them.
    std::string Bytes()
    {
        return Bytes(Byte());
    }
    std::string Bytes(std::size_t length)
    {
        const std::span<const std::uint8_t> bytes = Take(length);
        return {bytes.begin(), bytes.end()};
    }

    /// Everything up to the end.
    std::string Rest()
    {
        return Bytes(m_rest.size());
    }

    /// One of `choices`.
    template <class Choices>
    const auto& OneOf(const Choices& choices)
    {
        return choices[Byte() % std::size(choices)];
    }

private:
    std::span<const std::uint8_t> Take(std::size_t count)
    {
        const std::span<const std::uint8_t> taken = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return taken;
    }

    std::span<const std::uint8_t> m_rest;
};

} // namespace fuzz
