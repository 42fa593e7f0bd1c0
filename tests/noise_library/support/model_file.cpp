#include "noise_library/support/model_file.hpp"

#include "utils/crypto.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <fstream>
#include <numbers>
#include <random>

namespace noise_test {
namespace {

using Matrix = TALVO::CONTAINERS::Matrix;

template <class T>
std::string raw(T const& value) {
    return {reinterpret_cast<char const*>(&value), sizeof value};
}

std::string length(std::size_t count) { return raw(static_cast<std::uint32_t>(count)); }

std::string floats(std::vector<float> const& values) {
    return {reinterpret_cast<char const*>(values.data()), values.size() * sizeof(float)};
}

std::string body(float value) { return raw(value); }
std::string body(int value) { return raw(value); }
std::string body(std::string const& text) { return length(text.size()) + text; }
std::string body(std::vector<float> const& values) { return length(values.size()) + floats(values); }
std::string body(Matrix const& m) { return length(m.rowSize()) + length(m.colSize()) + floats(m.data()); }

template <class T>
std::string body(std::vector<T> const& items) {
    std::string encoded = length(items.size());
    for (T const& item : items)
        encoded += body(item);
    return encoded;
}

/// Random weights; a layer's gain stays near one.
class Weights {
  public:
    std::vector<float> vector(std::size_t size, float middle, float spread) {
        std::uniform_real_distribution<float> values(middle - spread, middle + spread);
        std::vector<float> result(size);
        for (float& value : result)
            value = values(random_);
        return result;
    }
    Matrix matrix(std::size_t rows, std::size_t cols) {
        return {rows, cols, vector(rows * cols, 0.0f, 1.2f / std::sqrt(static_cast<float>(rows)))};
    }

  private:
    std::mt19937 random_{12345};
};

/// The sizes of a network's vectors from its input over the hidden layers to its output.
struct NetworkSizes {
    std::size_t input;
    std::vector<std::size_t> hidden;
    std::size_t output;
};

void addLayers(ModelFile& model, Weights& weights, NetworkSizes const& sizes, bool outputInLinearToo) {
    for (std::string const branch : {"Linear", "NonLinear"}) {
        std::vector<Matrix> matrices;
        std::vector<std::vector<float>> biases;
        std::size_t rows = sizes.input;
        auto const add = [&](std::size_t cols) {
            matrices.push_back(weights.matrix(std::exchange(rows, cols), cols));
            biases.push_back(weights.vector(cols, 0.0f, 0.1f));
        };
        std::ranges::for_each(sizes.hidden, add);
        if (branch == "NonLinear" || outputInLinearToo)
            add(sizes.output);
        model.set("Weight" + branch, matrices).set("Baes" + branch, biases);
    }
}

std::vector<std::vector<float>> perLayer(Weights& weights, std::vector<std::size_t> const& sizes,
                                         float middle) {
    std::vector<std::vector<float>> result;
    for (std::size_t const size : sizes)
        result.push_back(weights.vector(size, middle, 0.1f));
    return result;
}

} // namespace

ModelFile& ModelFile::set(std::string const& key, Value const& value) {
    records_[key] = length(value.index()) + std::visit([](auto const& v) { return body(v); }, value);
    return *this;
}

ModelFile& ModelFile::remove(std::string const& key) {
    records_.erase(key);
    return *this;
}

std::string ModelFile::plain() const {
    std::string stream;
    for (auto const& [key, value] : records_)
        stream += body(key) + value;
    return stream;
}

std::string ModelFile::enciphered() const { return encipher(plain()); }

std::string encipher(std::string const& stream) {
    std::size_t const padding = (8 - stream.size() % 8) % 8;
    std::string const inner =
        length(0) + length(padding) + std::string(8, '\0') + stream + std::string(padding, '\0');
    std::vector<unsigned int> words(inner.size() / sizeof(unsigned int));
    std::memcpy(words.data(), inner.data(), inner.size());
    TALVO::UTILS::Crypto(TALVO::UTILS::Crypto::TEA)
        .encrypt(words.data(), static_cast<unsigned int>(words.size()));
    return std::string("TMW\0", 4) + std::string(12, '\x5A') +
           std::string(reinterpret_cast<char const*>(words.data()), inner.size());
}

ModelFile makeModel(std::string const& version, ModelShape const& shape) {
    auto const bins = static_cast<std::size_t>(shape.frameLength / 2);
    auto const preview = static_cast<std::size_t>(shape.previewFrames);
    bool const detectsVoice = version == "VAD_0.0.1";
    bool const feedForward = version == "0.0.1" || version == "0.0.2";
    // Compressed at the default rate.
    std::size_t bands = version >= "0.0.4" ? bins / 2 : bins;
    if (detectsVoice)
        ++bands;

    Weights weights;
    ModelFile model;
    model.set("Version", version).set("SampleRate", shape.sampleRate).set("FrameLength", shape.frameLength);
    model.set("Step", shape.frameLength / 2).set("CoefficientNumber", shape.frameLength / 2 + 1);
    model.set("FiltrBegin", 0)
        .set("FiltrEnd", shape.frameLength / 2)
        .set("PreviewFrames", shape.previewFrames);
    std::size_t const normalised = feedForward ? (preview + 1) * bands : bands;
    model.set("MU", weights.vector(normalised, 8.0f, 2.0f)).set("SD", weights.vector(normalised, 4.0f, 1.0f));

    std::size_t const input = (feedForward ? preview + 1 : preview) * bands;
    std::size_t const joined = feedForward ? input : input + shape.stateSize;
    std::vector<std::size_t> const hidden(shape.hiddenLayers, shape.stateSize);
    addLayers(model, weights, {joined, hidden, detectsVoice ? 1 : bands}, feedForward || detectsVoice);
    if (feedForward)
        model.set("HeadenMultiplier", perLayer(weights, hidden, 1.0f))
            .set("HeadenReducer", perLayer(weights, hidden, 0.0f))
            .set("NATFrameCount", 3);
    if (version >= "0.0.5")
        model.set("WeightGRU", weights.matrix(joined, shape.stateSize))
            .set("BaesGRU", weights.vector(shape.stateSize, 0.0f, 0.1f));
    if (version == "0.0.6")
        model.set("WeightGRU_reset", weights.matrix(joined, shape.stateSize))
            .set("BiasGRU_reset", weights.vector(shape.stateSize, 0.0f, 0.1f))
            .set("GainLinearNorm", perLayer(weights, hidden, 1.0f))
            .set("GainNonLinearNorm", perLayer(weights, hidden, 1.0f))
            .set("BiasLinearNorm", perLayer(weights, hidden, 0.0f))
            .set("BiasNonLinearNorm", perLayer(weights, hidden, 0.0f))
            .set("LpsEps", 100.0f);
    if (detectsVoice)
        model.set("Test_MINMAX", std::vector<float>{0.1f, 0.5f, 0.9f}).set("SD_FLOOR", 0.25f);
    return model;
}

std::filesystem::path TemporaryFolder::write(std::string const& name, std::string const& content) const {
    std::ofstream(path() / name, std::ios::binary) << content;
    return path() / name;
}

std::vector<float> makeSpeech(int rate, double seconds) {
    std::mt19937 random(7);
    std::normal_distribution<double> noise(0.0, 0.005);
    std::vector<float> samples(static_cast<std::size_t>(rate * seconds));
    for (std::size_t i = 0; i < samples.size(); ++i) {
        double const t = static_cast<double>(i) / rate;
        double voice = 0.0;
        for (int harmonic = 1; harmonic <= 12; ++harmonic)
            voice += std::sin(2.0 * std::numbers::pi * 140.0 * harmonic * t) / harmonic;
        double const syllable = std::max(0.0, std::sin(2.0 * std::numbers::pi * 3.0 * t));
        samples[i] = static_cast<float>(0.15 * voice * syllable + noise(random));
    }
    return samples;
}

} // namespace noise_test
