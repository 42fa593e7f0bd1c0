// The input is what an enciphered weight file holds behind its header, deciphered.

#include "noise_library/scratch_file.hpp"
#include "utils/crypto.hpp"
#include "weights/weight.hpp"

#include <cstring>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    noise_fuzz::silence();
    // The cipher works on whole blocks; what is left behind them stays as it is.
    std::vector<unsigned int> words(size / sizeof(unsigned int) + 2);
    if (size > 0)
        std::memcpy(words.data(), data, size);
    TALVO::UTILS::Crypto(TALVO::UTILS::Crypto::TEA)
        .encrypt(words.data(), static_cast<unsigned int>(size / sizeof(unsigned int)));
    std::string content = std::string("TMW\0", 4) + std::string(12, '\0');
    content.append(reinterpret_cast<char const*>(words.data()), size);
    TALVO::UTILS::Path const path(noise_fuzz::writeScratchFile("input.tw", content.data(), content.size()));
    TALVO::WEIGHTS::Weight weight;
    weight.read(path);
    return 0;
}
