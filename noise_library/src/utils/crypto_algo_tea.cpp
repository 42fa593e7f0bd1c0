#include "utils/crypto_algo_tea.hpp"

#include <array>

namespace TALVO::UTILS {
namespace {

constexpr std::array<std::uint32_t, 4> key{
#include "utils/tea_key.inc"
};
constexpr std::uint32_t delta = 0x9e3779b9;

std::uint32_t mix(std::uint32_t half, std::uint32_t sum, std::uint32_t first, std::uint32_t second) {
    return ((half << 4) + first) ^ (half + sum) ^ ((half >> 5) + second);
}

} // namespace

// The object holds one word and the rounds the others, so that the key stands nowhere as a whole.
CryptoAlgoTea::CryptoAlgoTea() : keyWord_(key[0]) {}

void CryptoAlgoTea::encrypt(unsigned int* data, unsigned int wordCount) {
    for (std::size_t i = 0; i < wordCount; i += 2) {
        std::uint32_t left = data[i];
        std::uint32_t right = data[i + 1];
        std::uint32_t sum = 0;
        for (std::uint32_t round = 0; round < rounds_; ++round) {
            sum += delta;
            left += mix(right, sum, keyWord_, key[1]);
            right += mix(left, sum, key[2], key[3]);
        }
        data[i] = left;
        data[i + 1] = right;
    }
}

void CryptoAlgoTea::decrypt(unsigned int* data, unsigned int wordCount) {
    for (std::size_t i = 0; i < wordCount; i += 2) {
        std::uint32_t left = data[i];
        std::uint32_t right = data[i + 1];
        std::uint32_t sum = delta * rounds_;
        for (std::uint32_t round = 0; round < rounds_; ++round) {
            right -= mix(left, sum, key[2], key[3]);
            left -= mix(right, sum, keyWord_, key[1]);
            sum -= delta;
        }
        data[i] = left;
        data[i + 1] = right;
    }
}

} // namespace TALVO::UTILS
