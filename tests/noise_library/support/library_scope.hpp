#pragma once

#include "noise_library/support/model_file.hpp"
#include "talvo_audio_sdk.h"

#include <stdexcept>

namespace noise_test {

/// The library, started and ended with the object, over a folder for models.
class LibraryScope {
  public:
    LibraryScope() {
        if (talvoAudioGlobalInit((folder_.path().wstring() + L"/").c_str()) != 0)
            throw std::runtime_error("the library didn't start");
    }
    ~LibraryScope() { talvoAudioGlobalDestroy(); }
    LibraryScope(LibraryScope const&) = delete;
    LibraryScope& operator=(LibraryScope const&) = delete;

    TemporaryFolder const& folder() const { return folder_; }
    /// Registers a model under a name and gives back the code of talvoAudioSetModel.
    int setModel(std::string const& name, ModelFile const& model) const {
        return talvoAudioSetModel(folder_.write(name + ".nmw", model.plain()).wstring().c_str(),
                                  name.c_str());
    }
    /// Registers a model with a control file's settings.
    int setModel(std::string const& name, ModelFile const& model, std::string const& settings) const {
        folder_.write(name + ".tw", model.enciphered());
        auto const control = folder_.write(name + ".cfg", "WEIGHT " + name + ".tw\n" + settings);
        return talvoAudioSetModel(control.wstring().c_str(), name.c_str());
    }

  private:
    TemporaryFolder folder_;
};

inline TalvoAudioSamplingRate samplingRate(int hertz) { return static_cast<TalvoAudioSamplingRate>(hertz); }
inline TalvoAudioFrameDuration frameDuration(int milliseconds) {
    return static_cast<TalvoAudioFrameDuration>(milliseconds);
}
inline void* openCleaning(int in, int out, int duration, char const* model) {
    return talvoAudioNcCreateSession(samplingRate(in), samplingRate(out), frameDuration(duration), model);
}

} // namespace noise_test
