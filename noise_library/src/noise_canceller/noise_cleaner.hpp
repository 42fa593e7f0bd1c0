#pragma once

#include "talvo_audio_sdk.h"
#include "talvo_audio_sdk/session_type.hpp"
#include "weights/model.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace TALVO::NOISE_CANCELLER {

/// Takes a stream frame by frame at the model's sample rate, as floats on the 16-bit scale. One
/// thread at a time.
class NoiseCleaner {
  public:
    virtual ~NoiseCleaner() = default;
    NoiseCleaner(NoiseCleaner const&) = delete;
    NoiseCleaner& operator=(NoiseCleaner const&) = delete;

    /// One frame in, one frame or the measured value out, in place.
    virtual bool cleanNoise(std::vector<float>& inOutVector) = 0;
    /// By how many samples the output is late.
    virtual std::size_t latency() const { return 0; }
    virtual bool resetSession() { return true; }
    virtual bool background_speaker_fix_switch(bool) { return false; }

    std::string getVersion() const { return model_->first->getWeightVersion(); }
    WEIGHTS::Weight const& weight() const { return *model_->first; }

    /// The cleaner for a kind of session and a model's version. Without a name the model is chosen
    /// by the rate. Called under the library's mutex.
    static std::unique_ptr<NoiseCleaner> create(TalvoAudioSamplingRate rate, TalvoAudioFrameDuration duration,
                                                char const* modelName,
                                                TALVO_AUDIO::TalvoAudioSessionType type);

    /// The model with the highest sample rate not above `rate`, else the last one of the right kind;
    /// null without any.
    static WEIGHTS::ModelPtr selectModel(std::vector<WEIGHTS::ModelPtr> const& models,
                                         TalvoAudioSamplingRate rate,
                                         TALVO_AUDIO::TalvoAudioSessionType type);

  protected:
    explicit NoiseCleaner(WEIGHTS::ModelPtr model) : model_(std::move(model)) {}

    WEIGHTS::ModelPtr model_;
};

} // namespace TALVO::NOISE_CANCELLER
