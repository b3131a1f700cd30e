#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace Fuzz {

/** The bytes of one input, taken piece by piece. Beyond their end there is nothing. */
class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : m_Left(data, size) {}

    bool empty() const { return m_Left.empty(); }

    /** At most `size` bytes. */
    std::span<const std::uint8_t> take(std::size_t size)
    {
        const auto taken = m_Left.first(size < m_Left.size() ? size : m_Left.size());
        m_Left = m_Left.subspan(taken.size());
        return taken;
    }

    /** A piece with its length before it, in two bytes. */
    std::span<const std::uint8_t> piece()
    {
        const auto length = take(2);
        return length.size() == 2 ? take(length[0] + std::size_t{256} * length[1]) : length;
    }

    /** As many bytes as `block` has, or fewer, over its beginning. */
    template<typename Block>
    void fill(Block& block)
    {
        const auto bytes = take(sizeof block);
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<std::uint8_t*>(&block));
    }

private:
    std::span<const std::uint8_t> m_Left;
};

/** Ends the program as a finding. */
inline void require(bool condition)
{
    if (!condition)
        __builtin_trap();
}

} // namespace Fuzz
