#include "noise_library/support/model_file.hpp"

#include "utils/crypto.hpp"

#include <cmath>
#include <cstdlib>
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

std::string length(std::size_t count) {
    return raw(static_cast<std::uint32_t>(count));
}

std::string floats(std::vector<float> const& values) {
    return {reinterpret_cast<char const*>(values.data()), values.size() * sizeof(float)};
}

std::string body(std::string const& text) {
    return length(text.size()) + text;
}
std::string body(std::vector<float> const& values) {
    return length(values.size()) + floats(values);
}
std::string body(Matrix const& m) {
    return length(m.rowSize()) + length(m.colSize()) + floats(m.data());
}

template <class T>
std::string list(std::vector<T> const& items) {
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
    std::vector<Matrix> linear;
    std::vector<Matrix> nonLinear;
    std::vector<std::vector<float>> linearBias;
    std::vector<std::vector<float>> nonLinearBias;
    std::size_t rows = sizes.input;
    auto const add = [&](std::size_t cols, bool both) {
        nonLinear.push_back(weights.matrix(rows, cols));
        nonLinearBias.push_back(weights.vector(cols, 0.0f, 0.1f));
        if (both) {
            linear.push_back(weights.matrix(rows, cols));
            linearBias.push_back(weights.vector(cols, 0.0f, 0.1f));
        }
        rows = cols;
    };
    for (std::size_t const cols : sizes.hidden)
        add(cols, true);
    add(sizes.output, outputInLinearToo);
    model.set("WeightLinear", linear).set("WeightNonLinear", nonLinear);
    model.set("BaesLinear", linearBias).set("BaesNonLinear", nonLinearBias);
}

std::vector<std::vector<float>> perLayer(Weights& weights, std::vector<std::size_t> const& sizes,
                                         float middle) {
    std::vector<std::vector<float>> result;
    for (std::size_t const size : sizes)
        result.push_back(weights.vector(size, middle, 0.1f));
    return result;
}

} // namespace

ModelFile& ModelFile::set(std::string const& key, float value) {
    records_[key] = raw(0) + raw(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, int value) {
    records_[key] = raw(1) + raw(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, std::string const& value) {
    records_[key] = raw(2) + body(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, std::vector<float> const& value) {
    records_[key] = raw(3) + body(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, Matrix const& value) {
    records_[key] = raw(4) + body(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, std::vector<std::vector<float>> const& value) {
    records_[key] = raw(5) + list(value);
    return *this;
}
ModelFile& ModelFile::set(std::string const& key, std::vector<Matrix> const& value) {
    records_[key] = raw(6) + list(value);
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

std::string ModelFile::enciphered() const {
    return encipher(plain());
}

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
    bool const compressed = version >= "0.0.4";
    std::size_t bands = bins;
    if (compressed)
        bands = (static_cast<std::size_t>(shape.compressRate) + 2) * bins >> (shape.compressRate + 1);
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
            .set("NATFrameCount", shape.noiseFrames);
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
    if (compressed && shape.compressRate != 2)
        model.set("CONTROL_NIMBA_COMPRESS_RATE_v" + std::string("0_0_") + version.back(), shape.compressRate);
    return model;
}

TemporaryFolder::TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "noise-library-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw std::filesystem::filesystem_error("no temporary folder",
                                                std::error_code(errno, std::generic_category()));
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored; // a leftover folder must not fail a test
    std::filesystem::remove_all(path_, ignored);
}

std::filesystem::path TemporaryFolder::write(std::string const& name, std::string const& content) const {
    std::ofstream(path_ / name, std::ios::binary) << content;
    return path_ / name;
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
