#include <CorvantaSdkVideo/NoiseCancellation/CorvantaNoiseProcessor.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/Bundle.hpp>

#include <boost/locale/utf.hpp>

#include <algorithm>
#include <array>
#include <iostream>
#include <iterator>
#include <memory>
#include <utility>

namespace corvanta {

namespace {

unsigned samplesPerFrame(unsigned sampleRate, unsigned frameDuration) {
    unsigned product = 0;
    if (__builtin_mul_overflow(sampleRate, frameDuration, &product)) {
        fatalError("The product of sample rate and frame duration overflows");
    }
    return product / 1000;
}

std::string modelPath(const std::string& modelName) {
    const std::string folder = Bundle::resourceDirectory();
    if (folder.empty()) {
        fatalError("Unexpectedly found nil while unwrapping an Optional value");
    }
    return folder + "/" + modelName;
}

} // namespace

TalvoAudioSamplingRate talvoRate(unsigned sampleRate) {
    constexpr auto known = std::to_array<unsigned>({8000, 12000, 24000, 32000, 44100, 48000, 88200, 96000});
    const bool isKnown = std::ranges::find(known, sampleRate) != known.end();
    return isKnown ? static_cast<TalvoAudioSamplingRate>(sampleRate) : TALVO_AUDIO_RATE_16000;
}

TalvoAudioFrameDuration talvoFrameDuration(unsigned milliseconds) {
    constexpr auto known = std::to_array<unsigned>({10, 15, 20, 30, 32, 40});
    const bool isKnown = std::ranges::find(known, milliseconds) != known.end();
    return isKnown ? static_cast<TalvoAudioFrameDuration>(milliseconds) : TALVO_AUDIO_DURATION_10;
}

void withWideChars(const std::string& text, const std::function<void(const wchar_t*)>& body) {
    namespace utf = boost::locale::utf;
    constexpr wchar_t replacement = 0xFFFD;
    std::wstring wide;
    for (auto position = text.begin(); position != text.end();) {
        const utf::code_point point = utf::utf_traits<char>::decode(position, text.end());
        const bool valid = point != utf::illegal && point != utf::incomplete;
        wide += valid ? static_cast<wchar_t>(point) : replacement;
    }
    body(wide.c_str());
}

CorvantaNoiseProcessor::CorvantaNoiseProcessor(std::string modelName, unsigned sampleRate,
                                               unsigned frameDuration)
    : bufferSize_(samplesPerFrame(sampleRate, frameDuration)), frameDuration_(frameDuration),
      modelName_(std::move(modelName)), sampleRate_(sampleRate) {}

CorvantaNoiseProcessor::~CorvantaNoiseProcessor() { closeSession(); }

bool CorvantaNoiseProcessor::loadModel(const std::string& modelName) {
    int result = 0;
    withWideChars(modelPath(modelName),
                  [&](const wchar_t* path) { result = talvoAudioSetModel(path, modelName.c_str()); });
    return result == 0;
}

void CorvantaNoiseProcessor::startSession(bool modelIsLoaded) {
    if (!modelIsLoaded && !loadModel(modelName_)) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::configurationError,
                                    "the noise model " + modelPath(modelName_) + " can't be loaded");
    }
    sessionId_ = createSession();
    if (sessionId_ == nullptr) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::configurationError,
                                    "the noise library starts no session with " + modelPath(modelName_));
    }
}

void CorvantaNoiseProcessor::process(const PCMBuffer& bufferIn, PCMBuffer& bufferOut) {
    const auto* floatIn = bufferIn.floatChannelData();
    const auto* int16In = bufferIn.int16ChannelData();
    // A buffer that is too short for a frame is told as it is, so that the library refuses it.
    const auto frameIn = [this](const auto& buffer) {
        return static_cast<unsigned>(std::min<std::size_t>(buffer.size(), bufferSize_));
    };
    if (auto* floatOut = bufferOut.floatChannelData(); floatIn != nullptr && floatOut != nullptr) {
        talvoAudioNcCleanAmbientNoiseFloat(sessionId_, floatIn->data(), frameIn(*floatIn), floatOut->data(),
                                           frameIn(*floatOut));
    } else if (auto* int16Out = bufferOut.int16ChannelData(); int16In != nullptr && int16Out != nullptr) {
        talvoAudioNcCleanAmbientNoiseInt16(sessionId_, int16In->data(), frameIn(*int16In), int16Out->data(),
                                           frameIn(*int16Out));
    } else {
        std::cout << "Only PCM float32 & int16 are supported, please contact to ZEL team for support\n"
                  << std::flush;
    }
}

void CorvantaNoiseProcessor::setStrength(float strength) {
    if (talvoAudioNcSetStrength(sessionId_, strength) != 0) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::configurationError,
                                    "a strength must be from 0 to 1");
    }
}

std::int64_t CorvantaNoiseProcessor::delay() const {
    const std::unique_ptr<void, int (*)(void*)> session(createSession(), talvoAudioNcCloseSession);
    // What it leaves as it was is as late as what it cleans.
    talvoAudioNcSetStrength(session.get(), 0);
    std::vector<float> in(bufferSize_);
    std::vector<float> out(bufferSize_);
    in.front() = 0.5F;
    constexpr std::int64_t framesOfLongestDelay = 16;
    std::pair<float, std::int64_t> loudest{0.0F, 0};
    for (std::int64_t frame = 0; frame < framesOfLongestDelay; ++frame) {
        talvoAudioNcCleanAmbientNoiseFloat(session.get(), in.data(), bufferSize_, out.data(), bufferSize_);
        const auto peak = std::ranges::max_element(out);
        if (*peak > loudest.first) {
            loudest = {*peak, frame * bufferSize_ + (peak - out.begin())};
        }
        in.front() = 0;
    }
    return loudest.second;
}

void CorvantaNoiseProcessor::endSession() {
    closeSession();
    if (talvoAudioGlobalDestroy() != 0) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::configurationError,
                                    "the noise library could not be ended");
    }
}

void* CorvantaNoiseProcessor::createSession() const {
    const TalvoAudioSamplingRate rate = talvoRate(sampleRate_);
    return talvoAudioNcCreateSession(rate, rate, talvoFrameDuration(frameDuration_), modelName_.c_str());
}

void CorvantaNoiseProcessor::closeSession() {
    if (void* session = std::exchange(sessionId_, nullptr); session != nullptr) {
        talvoAudioNcCloseSession(session);
    }
}

} // namespace corvanta
