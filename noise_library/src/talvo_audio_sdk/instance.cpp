#include "talvo_audio_sdk/instance.hpp"

#include "utils/control_file.hpp"
#include "utils/printed_line.hpp"
#include "utils/talvo_exception.hpp"
#include "utils/utf8.hpp"

namespace TALVO::TALVO_AUDIO {

namespace {

// Never destroyed: threads may still clean while the process ends.
union Owner {
    constexpr Owner() : instance() {}
    ~Owner() {}
    std::unique_ptr<TalvoAudioInstanceT> instance;
};

constinit Owner owner;

} // namespace

std::mutex TalvoAudioInstanceT::mutexForInputs_;
std::atomic<TalvoAudioInstanceT*> TalvoAudioInstanceT::visible_ = nullptr;

TalvoAudioInstanceT* TalvoAudioInstanceT::Instance(MODE mode, wchar_t const* workingPath) {
    switch (mode) {
    case MODE::destroy: {
        std::scoped_lock const lock(mutexForInputs_);
        if (owner.instance == nullptr)
            TALVO_THROW("DESTROYING WITHOUT INTIALIZATION");
        visible_.store(nullptr, std::memory_order_release);
        owner.instance.reset();
        return nullptr;
    }
    case MODE::create: {
        std::scoped_lock const lock(mutexForInputs_);
        if (owner.instance != nullptr)
            TALVO_THROW("DOUBLE INITIALIZATION WITHOUT DESTROYING");
        owner.instance.reset(new TalvoAudioInstanceT(workingPath));
        visible_.store(owner.instance.get(), std::memory_order_release);
        return owner.instance.get();
    }
    case MODE::access: {
        TalvoAudioInstanceT* const instance = visible_.load(std::memory_order_acquire);
        if (instance == nullptr)
            TALVO_THROW("TRY TO GET NULL INSTANCE,ISN'T INITIALIZED");
        return instance;
    }
    }
    TALVO_THROW("Incorrect instance access mode...");
}

TalvoAudioInstanceT::~TalvoAudioInstanceT() { clearAll(); }

void TalvoAudioInstanceT::clearAll() {
    sessions_.clear();
    models_.clear();
    weightNames_.clear();
    modelNames_.clear();
    workingPath_ = UTILS::Path();
}

bool TalvoAudioInstanceT::addWeightWithControlFile(wchar_t const* path, char const* modelName) {
    std::wstring whole = path;
    if (!whole.starts_with(L'/'))
        whole.insert(0, workingPath_.getFileNameWStr());
    std::string const name = modelName != nullptr ? modelName : "";
    static_cast<void>(UTILS::fromUtf8(name)); // refuses a name that no other program could show
    if (name.empty() || modelNames_.contains(name)) {
        UTILS::printLine("WARNING model name exists or empty, please insert different name");
        return false;
    }
    auto const model = std::make_shared<WEIGHTS::Model>();
    std::string weightName;
    if (!readModel(*model, whole, weightName))
        return false;
    if (model->first != nullptr) {
        models_.push_back(model);
        modelNames_[name] = models_.size() - 1;
        if (!weightName.empty())
            weightNames_[weightName] = models_.size() - 1;
    }
    if (modelNames_.contains(name))
        return true;
    UTILS::printLine("Warning Weight name isn't included or weight has been included before ");
    return false;
}

/// False when nothing may be registered; a model without a weight is no failure yet.
bool TalvoAudioInstanceT::readModel(WEIGHTS::Model& model, std::wstring const& path,
                                    std::string& weightName) {
    std::wstring const extension = UTILS::getFileExtension(path.c_str());
    if (extension == L"cfg")
        return readControlledModel(model, path, weightName);
    if (extension == L"nmw" || extension == L"tw") {
        std::string const narrow = UTILS::toUtf8(path);
        UTILS::printLine("WEIGHT " + narrow);
        std::tie(model.first, weightName) = readAndCheckWeight(UTILS::Path(path));
    }
    return true;
}

bool TalvoAudioInstanceT::readControlledModel(WEIGHTS::Model& model, std::wstring const& path,
                                              std::string& weightName) {
    std::vector<std::pair<std::string, std::string>> pairs;
    UTILS::Path controlFile(path);
    if (!UTILS::readControlFile(pairs, controlFile))
        return true;
    for (auto const& [key, value] : pairs) {
        if (key == "CONTROLFILE") {
            UTILS::printLine("WARNING there are CONTROLFILE parameter inside of controlFile, skipped");
        } else if (key == "WEIGHT") {
            if (model.first != nullptr) {
                UTILS::printLine("WARNING multiple weight including, weight exists.");
                continue;
            }
            UTILS::printLine("WEIGHT " + value);
            UTILS::Path weightPath(UTILS::fromUtf8(value));
            weightPath.pushFront(workingPath_.getFileNameWStr());
            weightPath.normalize();
            std::tie(model.first, weightName) = readAndCheckWeight(weightPath);
        } else if (!addModelEnvironment(model, key.c_str(), value.c_str())) {
            return false;
        }
    }
    return true;
}

bool TalvoAudioInstanceT::addModelEnvironment(WEIGHTS::Model& model, char const* key, char const* value) {
    TALVO_ASSERT(nullptr != key && nullptr != value, "nullptr != key && nullptr != value");
    UTILS::printLine(std::string("ENVIRONMENT KEY-\"") + key + "\" VALUE-\"" + value + "\"");
    return model.second.insert<std::string>(key, value, CONTAINERS::AnyMap::OVERWRITE) != nullptr;
}

std::pair<std::shared_ptr<WEIGHTS::Weight>, std::string>
TalvoAudioInstanceT::readAndCheckWeight(UTILS::Path const& path) {
    std::string const name = UTILS::toUtf8(UTILS::getFileName(path.getFileNameWStr().c_str()));
    if (name.size() < 2) {
        UTILS::printLine("ERROR WEIGHT NAME ISNT LONG ENOUGHT");
        return {};
    }
    if (auto const known = weightNames_.find(name); known != weightNames_.end())
        return {models_[known->second]->first, ""};
    auto weight = std::make_shared<WEIGHTS::Weight>();
    if (weight->read(path))
        return {weight, name};
    UTILS::printLine("WARNING weight isn't loaded \n weigth file: " + UTILS::toUtf8(path.getFileNameWStr()) +
                     "\nWeight read result: " + weight->error());
    return {};
}

TalvoAudioSessionT* TalvoAudioInstanceT::createNCSession(TalvoAudioSamplingRate inRate,
                                                         TalvoAudioSamplingRate outRate,
                                                         TalvoAudioFrameDuration duration,
                                                         char const* modelName) {
    return createSession(inRate, outRate, duration, modelName, TalvoAudioSessionType::noiseCleaning);
}

TalvoAudioSessionT* TalvoAudioInstanceT::createVADSession(TalvoAudioSamplingRate rate,
                                                          TalvoAudioFrameDuration duration,
                                                          char const* modelName) {
    return createSession(rate, TALVO_AUDIO_RATE_16000, duration, modelName,
                         TalvoAudioSessionType::voiceActivity);
}

TalvoAudioSessionT* TalvoAudioInstanceT::createNoiseDBSession(TalvoAudioSamplingRate rate,
                                                              TalvoAudioFrameDuration duration,
                                                              char const* modelName) {
    return createSession(rate, TALVO_AUDIO_RATE_16000, duration, modelName,
                         TalvoAudioSessionType::noiseLevel);
}

TalvoAudioSessionT* TalvoAudioInstanceT::createSession(TalvoAudioSamplingRate inRate,
                                                       TalvoAudioSamplingRate outRate,
                                                       TalvoAudioFrameDuration duration,
                                                       char const* modelName, TalvoAudioSessionType type) {
    std::scoped_lock const lock(mutexForInputs_);
    return sessions_.add(std::make_unique<TalvoAudioSessionT>(inRate, outRate, duration, modelName, type));
}

TalvoAudioSessionType TalvoAudioInstanceT::getSessionType(void const* session) const {
    return sessions_.typeOf(session);
}

bool TalvoAudioInstanceT::destroySession(void* session) {
    std::scoped_lock const lock(mutexForInputs_);
    if (sessions_.remove(session))
        return true;
    UTILS::printLine("WARNING SESSION ISN'T FOUND");
    return false;
}

} // namespace TALVO::TALVO_AUDIO
