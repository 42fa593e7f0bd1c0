#include "noise_canceller/model_params.hpp"

#include "utils/assertion.hpp"
#include "utils/fft.hpp"
#include "utils/talvo_exception.hpp"

namespace TALVO::NOISE_CANCELLER {
namespace {

/// What is longer than any rate and duration can ask for would only cost memory before it fails.
constexpr std::size_t longestFrame = 1 << 13;
constexpr std::size_t longestHistory = 1 << 12;

/// The shared object under a key; the one made here stays the caller's own if the key holds
/// something else, which a control file can bring about.
template <class T, class Make>
std::shared_ptr<T> shared(CONTAINERS::AnyMap& environment, std::string const& key, Make make) {
    if (auto present = environment.get<T>(key))
        return present;
    T made = make();
    auto const stored = environment.insert<T>(key, made, CONTAINERS::AnyMap::KEEP);
    return stored ? stored : std::make_shared<T>(std::move(made));
}

} // namespace

std::size_t readSize(WEIGHTS::Weight const& weight, std::string const& key) {
    int const value = weight.getReference<int>(key);
    if (value < 0)
        TALVO_THROW("ERROR DATA With Key: " + key + " is negative");
    return static_cast<std::size_t>(value);
}

ModelParams::ModelParams(WEIGHTS::Weight const& weight, std::size_t inputFrameMilliseconds)
    : frameLength(readSize(weight, "FrameLength")), step(readSize(weight, "Step")),
      previewFrames(readSize(weight, "PreviewFrames")),
      coefficientNumber(readSize(weight, "CoefficientNumber")),
      filterRangeStart(readSize(weight, "FiltrBegin")), filterRangeEnd(readSize(weight, "FiltrEnd")),
      sampleRate(readSize(weight, "SampleRate")), weight_MU(weight.getReference<std::vector<float>>("MU")),
      weight_SD(weight.getReference<std::vector<float>>("SD")),
      frameDuration(sampleRate == 0 ? 0 : frameLength * 1000 / sampleRate),
      inputFrameDuration(inputFrameMilliseconds) {
    TALVO_ASSERT(filterRangeStart < filterRangeEnd, "filterRangeStart < filterRangeEnd");
    if (frameLength > longestFrame || step > longestFrame || coefficientNumber > longestFrame ||
        filterRangeEnd > longestFrame || previewFrames > longestHistory)
        TALVO_THROW("the model's sizes are out of any range");
}

WindowPtr sharedWindow(WEIGHTS::Model& model, std::string const& key, WindowGenerator generate,
                       std::size_t frameLength) {
    WindowPtr vecptr = shared<std::vector<float>>(model.second, key, [&] {
        std::vector<float> window(frameLength);
        generate(frameLength, window.data(), window.size());
        return window;
    });
    TALVO_ASSERT(vecptr->size() == frameLength, "vecptr->size()==frameLength");
    return vecptr;
}

std::shared_ptr<UTILS::FFT> sharedTransform(WEIGHTS::Model& model, std::size_t frameLength) {
    auto fftCalculatorPtr = *shared<std::shared_ptr<UTILS::FFT>>(
        model.second, "GEN_FFTCalculator", [&] { return UTILS::FFT::create(frameLength); });
    TALVO_ASSERT(fftCalculatorPtr, "fftCalculatorPtr");
    return fftCalculatorPtr;
}

} // namespace TALVO::NOISE_CANCELLER
