#pragma once

#include "utils/icrypto_algo.hpp"

#include <cstdint>

namespace TALVO::UTILS {

/// The Tiny Encryption Algorithm (D. Wheeler, R. Needham, "TEA, a tiny encryption algorithm", 1994)
/// on blocks of two words. A count that is odd makes the last block reach one word behind it.
class CryptoAlgoTea : public ICryptoAlgo {
  public:
    CryptoAlgoTea();

    void encrypt(unsigned int* data, unsigned int wordCount) override;
    void decrypt(unsigned int* data, unsigned int wordCount) override;

  private:
    std::uint32_t rounds_ = 32;
    std::uint32_t keyWord_;
};

} // namespace TALVO::UTILS
