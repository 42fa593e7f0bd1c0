#pragma once

#include <cstdint>

namespace TALVO::TALVO_AUDIO {

enum class TalvoAudioSessionType : std::int32_t {
    unknown = 0,
    noiseCleaning = 1,
    voiceActivity = 2,
    noiseLevel = 3
};

} // namespace TALVO::TALVO_AUDIO
