#pragma once

#include "support/TemporaryDirectory.hpp"
#include "utils/matrix.hpp"

#include <cstdint>
#include <map>
#include <variant>

namespace noise_test {

/// The records of a weight file, by key; what is set again is replaced.
class ModelFile {
  public:
    using Matrix = TALVO::CONTAINERS::Matrix;

    /// In the order of their numbers in a file.
    using Value = std::variant<float, int, std::string, std::vector<float>, Matrix,
                               std::vector<std::vector<float>>, std::vector<Matrix>>;

    ModelFile& set(std::string const& key, Value const& value);
    ModelFile& remove(std::string const& key);

    /// The record stream, as a plain file holds it.
    std::string plain() const;
    /// The content of an enciphered file.
    std::string enciphered() const;

  private:
    std::map<std::string, std::string> records_; ///< type and value, encoded
};

std::string encipher(std::string const& stream);

struct ModelShape {
    int sampleRate = 16000;
    int frameLength = 320;
    int previewFrames = 2;
    std::size_t stateSize = 24; ///< width of the first and the last hidden layer
    std::size_t hiddenLayers = 2;
};

/// A model of any version with random weights of a sensible size; the same each time.
ModelFile makeModel(std::string const& version, ModelShape const& shape = {});

/// A folder for models that goes with the object.
class TemporaryFolder : public corvanta::test::TemporaryDirectory {
  public:
    std::filesystem::path write(std::string const& name, std::string const& content) const;
};

/// Speech-like sound: harmonics in syllables over noise, on the scale of -1 to 1.
std::vector<float> makeSpeech(int rate, double seconds);

} // namespace noise_test
