#include "utils/crypto.hpp"

#include "utils/crypto_algo_tea.hpp"
#include "utils/talvo_exception.hpp"

namespace TALVO::UTILS {

Crypto::Crypto(AlgoTypes type) {
    if (type != TEA)
        TALVO_THROW("Incorrect crypto algo type...");
    algo_ = std::make_unique<CryptoAlgoTea>();
}

} // namespace TALVO::UTILS
