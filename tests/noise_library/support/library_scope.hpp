#pragma once

#include "noise_library/support/model_file.hpp"
#include "talvo_audio_sdk.h"

#include <string>

namespace noise_test {

/// The library, started and ended with the object, over a folder for models.
class LibraryScope {
  public:
    LibraryScope();
    ~LibraryScope();
    LibraryScope(LibraryScope const&) = delete;
    LibraryScope& operator=(LibraryScope const&) = delete;

    TemporaryFolder const& folder() const { return folder_; }
    /// Registers a model under a name and gives back the code of talvoAudioSetModel.
    int setModel(std::string const& name, ModelFile const& model) const;
    /// Registers a model with a control file's settings.
    int setModel(std::string const& name, ModelFile const& model, std::string const& settings) const;

  private:
    TemporaryFolder folder_;
};

inline TalvoAudioSamplingRate samplingRate(int hertz) {
    return static_cast<TalvoAudioSamplingRate>(hertz);
}
inline TalvoAudioFrameDuration frameDuration(int milliseconds) {
    return static_cast<TalvoAudioFrameDuration>(milliseconds);
}

} // namespace noise_test
