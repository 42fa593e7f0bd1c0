#pragma once

#include "noise_canceller/forward_pass.hpp"
#include "noise_canceller/model_params.hpp"
#include "noise_canceller/network_weights.hpp"
#include "noise_canceller/noise_cleaner.hpp"
#include "utils/cyclic_block_data.hpp"

#include <complex>
#include <cstddef>
#include <vector>

namespace TALVO::NOISE_CANCELLER {

/// Doesn't clean: for each input frame it gives the probability that the frame holds speech.
class VadCleaner_v0_0_1 : public NoiseCleaner {
  public:
    VadCleaner_v0_0_1(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

    /// One frame in; the vector out holds one element, the probability.
    bool cleanNoise(std::vector<float>& inOutVector) override;

    /// The probability of one frame of the model's length, before the state may be reset.
    float probabilityCalc(float const* data, std::size_t dataSize);
    /// Forgets the state once speech has been long enough away, by the network's last result.
    void state_reset_functionality(float rawOutput);

    /// Brings the input to the level the network was trained at, whatever the microphone's gain.
    class AvcVol {
      public:
        double getRescaleCoef(float const* data, std::size_t size);

      private:
        double alpha_ = 0.954992586021436;
        double minEnergy_ = 10000.0;
        double limit_ = 2.0;
        double target_ = 2000.0;
        double energy_ = 4000000.0;
    };

  private:
    struct Params : ModelParams, GatedWeights {
        Params(WEIGHTS::Model& model, std::size_t inputFrameDuration);

        std::size_t frameCount;      ///< frames of history
        std::size_t frameFutureSize; ///< compressed bins of one frame
        float varianceFloor = 0.0f;
        std::vector<float> testMinMax; ///< least, best threshold and greatest of the network's results
        bool stateReset = false;
        std::size_t windowLen = 200;
        double probabilityLimit = 0.75;
        double ratio = 0.95;
        std::size_t minFrames = 300;
        WindowPtr hammingWindowPtr;
        std::shared_ptr<UTILS::FFT> fftCalculatorPtr;
    };

    float calibrated(float probability) const;

    Params params_;
    CONTAINERS::CyclicBlockData inputBlock_;
    CONTAINERS::CyclicBlockData framesFutures_;
    std::vector<float> state_;
    AvcVol avcVol_;
    std::vector<bool> flags_;
    std::size_t nextFlag_ = 0;
    std::size_t setFlags_ = 0;
    std::size_t frames_ = 0;

    std::vector<float> tempVector_;
    std::vector<std::complex<float>> spectrum_;
    NOISE_CLEANER_FUNCTIONS::PassBuffers buffers_;
};

} // namespace TALVO::NOISE_CANCELLER
