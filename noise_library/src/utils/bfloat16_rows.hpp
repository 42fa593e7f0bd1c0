#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace TALVO::UTIL_FUNCTIONS {

/// Rows of bfloat16 numbers, the upper halves of floats. The columns of a row go by blocks of 32, in which
/// number i shares a word of 32 bits with number 16 + i, its own bits being the lower ones: one operation
/// makes floats of as many numbers as a register has words, in their order. What is left of a row after its
/// last whole block stands number by number.
constexpr std::size_t bfloat16Block = 32;
constexpr std::size_t wordsOfBlock = bfloat16Block / 2;

/// A word somewhere in a row, which begins at any even address.
using Bfloat16Pair [[gnu::may_alias, gnu::aligned(2)]] = std::uint32_t;

[[gnu::always_inline]] inline float lowerOf(std::uint32_t pair) { return std::bit_cast<float>(pair << 16); }
[[gnu::always_inline]] inline float upperOf(std::uint32_t pair) {
    return std::bit_cast<float>(pair & 0xffff0000u);
}

/// Of floats whose lower halves are zero; `cols` numbers a row.
inline std::vector<std::uint16_t> bfloat16Rows(std::vector<float> const& values, std::size_t cols) {
    auto const bits = [](float value) { return std::bit_cast<std::uint32_t>(value); };
    std::vector<std::uint16_t> rows(values.size());
    for (std::size_t row = 0; row < values.size(); row += cols) {
        std::size_t c = row;
        for (; c + bfloat16Block <= row + cols; c += bfloat16Block) {
            for (std::size_t i = 0; i < wordsOfBlock; ++i) {
                std::uint32_t const pair = bits(values[c + wordsOfBlock + i]) | bits(values[c + i]) >> 16;
                std::memcpy(&rows[c + 2 * i], &pair, sizeof pair);
            }
        }
        for (; c < row + cols; ++c)
            rows[c] = static_cast<std::uint16_t>(bits(values[c]) >> 16);
    }
    return rows;
}

} // namespace TALVO::UTIL_FUNCTIONS
