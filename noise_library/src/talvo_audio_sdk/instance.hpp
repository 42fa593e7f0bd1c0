#pragma once

#include "talvo_audio_sdk.h"
#include "talvo_audio_sdk/session_list.hpp"
#include "talvo_audio_sdk/session_type.hpp"
#include "utils/path.hpp"
#include "weights/model.hpp"

#include <atomic>
#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace TALVO::TALVO_AUDIO {

/// The one object of the process that owns the working path, the models and the sessions.
class TalvoAudioInstanceT {
  public:
    enum class MODE { access = 0, create = 1, destroy = 2 };

    /// Access takes no lock; the other modes hold `mutexForInputs_`. Destroying gives back null.
    static TalvoAudioInstanceT* Instance(MODE mode, wchar_t const* workingPath = nullptr);

    ~TalvoAudioInstanceT();
    TalvoAudioInstanceT(TalvoAudioInstanceT const&) = delete;
    TalvoAudioInstanceT& operator=(TalvoAudioInstanceT const&) = delete;

    /// Registers the model of a weight or control file under a new name. The caller holds the mutex.
    bool addWeightWithControlFile(wchar_t const* path, char const* modelName);
    /// False for a key that the environment holds already.
    bool addModelEnvironment(WEIGHTS::Model& model, char const* key, char const* value);
    /// The weight of a file, and the file's stem if it was read now; null when it can't be read.
    std::pair<std::shared_ptr<WEIGHTS::Weight>, std::string> readAndCheckWeight(UTILS::Path const& path);

    TalvoAudioSessionT* createNCSession(TalvoAudioSamplingRate inRate, TalvoAudioSamplingRate outRate,
                                        TalvoAudioFrameDuration duration, char const* modelName);
    TalvoAudioSessionT* createVADSession(TalvoAudioSamplingRate rate, TalvoAudioFrameDuration duration,
                                         char const* modelName);
    TalvoAudioSessionT* createNoiseDBSession(TalvoAudioSamplingRate rate, TalvoAudioFrameDuration duration,
                                             char const* modelName);

    bool isSessionTrue(void const* session) const { return sessions_.holds(session); }
    /// `unknown` for null and for a pointer that isn't in the list.
    TalvoAudioSessionType getSessionType(void const* session) const;
    bool destroySession(void* session);

    std::vector<WEIGHTS::ModelPtr> const& getModels() const { return models_; }
    std::map<std::string, std::size_t> const& modelNames() const { return modelNames_; }

    void clearAll();

    /// Held through the loading of models and all changes of the list of sessions.
    static std::mutex mutexForInputs_;

  private:
    explicit TalvoAudioInstanceT(wchar_t const* workingPath) : workingPath_(workingPath) {}

    bool readModel(WEIGHTS::Model& model, std::wstring const& path, std::string& weightName);
    bool readControlledModel(WEIGHTS::Model& model, std::wstring const& path, std::string& weightName);
    TalvoAudioSessionT* createSession(TalvoAudioSamplingRate inRate, TalvoAudioSamplingRate outRate,
                                      TalvoAudioFrameDuration duration, char const* modelName,
                                      TalvoAudioSessionType type);

    /// What access reads, so that a late or early call is an error and not a race.
    static std::atomic<TalvoAudioInstanceT*> visible_;

    UTILS::Path workingPath_;
    SessionList sessions_;
    std::vector<WEIGHTS::ModelPtr> models_;
    std::map<std::string, std::size_t> weightNames_;
    std::map<std::string, std::size_t> modelNames_;
};

} // namespace TALVO::TALVO_AUDIO
