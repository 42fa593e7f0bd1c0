#pragma once

namespace TALVO::UTILS {

/// A cipher that works in place on 32-bit words.
class ICryptoAlgo {
  public:
    virtual void encrypt(unsigned int* data, unsigned int wordCount) = 0;
    virtual void decrypt(unsigned int* data, unsigned int wordCount) = 0;
    virtual ~ICryptoAlgo() = default;
};

} // namespace TALVO::UTILS
