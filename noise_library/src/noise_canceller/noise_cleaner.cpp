#include "noise_canceller/noise_cleaner.hpp"

#include "noise_canceller/noise_cleaner_v0_0_1.hpp"
#include "noise_canceller/noise_cleaner_v0_0_2.hpp"
#include "noise_canceller/noise_cleaner_v0_0_3.hpp"
#include "noise_canceller/noise_cleaner_v0_0_4.hpp"
#include "noise_canceller/noise_cleaner_v0_0_5.hpp"
#include "noise_canceller/noise_cleaner_v0_0_6.hpp"
#include "noise_canceller/noise_db_cleaner_v0_0_1.hpp"
#include "noise_canceller/vad_cleaner_v0_0_1.hpp"
#include "talvo_audio_sdk/instance.hpp"
#include "utils/talvo_exception.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace TALVO::NOISE_CANCELLER {

using TALVO_AUDIO::TalvoAudioInstanceT;
using TALVO_AUDIO::TalvoAudioSessionType;

namespace {

using Make = std::unique_ptr<NoiseCleaner> (*)(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration);

template <class Cleaner>
std::unique_ptr<NoiseCleaner> make(WEIGHTS::ModelPtr model, std::size_t inputFrameDuration) {
    return std::make_unique<Cleaner>(std::move(model), inputFrameDuration);
}

struct CleanerClass {
    TalvoAudioSessionType type;
    std::string_view version;
    Make make;
};

constexpr std::array<CleanerClass, 8> cleanerClasses{{
    {TalvoAudioSessionType::noiseCleaning, "0.0.6", make<NoiseCleaner_v0_0_6>},
    {TalvoAudioSessionType::noiseCleaning, "0.0.5", make<NoiseCleaner_v0_0_5>},
    {TalvoAudioSessionType::noiseCleaning, "0.0.4", make<NoiseCleaner_v0_0_4>},
    {TalvoAudioSessionType::noiseCleaning, "0.0.3", make<NoiseCleaner_v0_0_3>},
    {TalvoAudioSessionType::noiseCleaning, "0.0.2", make<NoiseCleaner_v0_0_2>},
    {TalvoAudioSessionType::noiseCleaning, "0.0.1", make<NoiseCleaner_v0_0_1>},
    {TalvoAudioSessionType::voiceActivity, "VAD_0.0.1", make<VadCleaner_v0_0_1>},
    {TalvoAudioSessionType::noiseLevel, "0.0.5", make<NoiseDBCleaner_v0_0_1>},
}};

} // namespace

std::unique_ptr<NoiseCleaner> NoiseCleaner::create(TalvoAudioSamplingRate rate,
                                                   TalvoAudioFrameDuration duration, char const* modelName,
                                                   TalvoAudioSessionType type) {
    TalvoAudioInstanceT* const pInstance = TalvoAudioInstanceT::Instance(TalvoAudioInstanceT::MODE::access);
    WEIGHTS::ModelPtr modelPtr;
    if (modelName != nullptr) {
        auto const iter = pInstance->modelNames().find(modelName);
        if (iter == pInstance->modelNames().end())
            TALVO_THROW("Weight with this name isn't found");
        TALVO_ASSERT(pInstance->getModels().size() > iter->second,
                     "pInstance->getModels().size() > iter->second");
        modelPtr = pInstance->getModels()[iter->second];
    } else {
        modelPtr = selectModel(pInstance->getModels(), rate, type);
    }
    if (modelPtr == nullptr)
        TALVO_THROW("Weight not found ");
    TALVO_ASSERT(modelPtr->first != nullptr, "modelPtr->first != nullptr");

    if (std::ranges::find(cleanerClasses, type, &CleanerClass::type) == cleanerClasses.end())
        TALVO_THROW("Talvo Audio Session Undefined");
    std::string const version = modelPtr->first->getWeightVersion();
    auto const fits = [&](CleanerClass const& entry) {
        return entry.type == type && entry.version == version;
    };
    auto const found = std::ranges::find_if(cleanerClasses, fits);
    if (found == cleanerClasses.end())
        TALVO_THROW("Unsupported weight version");
    return found->make(modelPtr, static_cast<std::size_t>(duration));
}

WEIGHTS::ModelPtr NoiseCleaner::selectModel(std::vector<WEIGHTS::ModelPtr> const& models,
                                            TalvoAudioSamplingRate rate, TalvoAudioSessionType type) {
    WEIGHTS::ModelPtr closest;
    WEIGHTS::ModelPtr last;
    int closestRate = 0;
    for (WEIGHTS::ModelPtr const& model : models) {
        bool const detectsVoice = model->first->getWeightVersion().find("VAD") != std::string::npos;
        if (detectsVoice != (type == TalvoAudioSessionType::voiceActivity))
            continue;
        last = model;
        int const modelRate = model->first->getWeightInfo().first;
        if (modelRate == static_cast<int>(rate))
            return model;
        if (modelRate < static_cast<int>(rate) && modelRate > closestRate) {
            closest = model;
            closestRate = modelRate;
        }
    }
    return closest ? closest : last;
}

} // namespace TALVO::NOISE_CANCELLER
