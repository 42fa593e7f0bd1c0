#pragma once

#include "utils/icrypto_algo.hpp"

#include <memory>

namespace TALVO::UTILS {

/// The cipher chosen by number.
class Crypto {
  public:
    enum AlgoTypes { TEA = 0 };

    explicit Crypto(AlgoTypes type);

    void encrypt(unsigned int* data, unsigned int wordCount) { algo_->encrypt(data, wordCount); }
    void decrypt(unsigned int* data, unsigned int wordCount) { algo_->decrypt(data, wordCount); }

  private:
    std::unique_ptr<ICryptoAlgo> algo_;
};

} // namespace TALVO::UTILS
