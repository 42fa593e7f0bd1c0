#pragma once

#include <string>

namespace TALVO::LADSPA {

/// Holds the audio library started, with the model that ships registered. The first one in a process starts
/// it, the last one ends it, unless other code of the process has started it already. Any thread.
///
/// The model lies in $CORVANTA_RESOURCES if that is set, else in ../share/corvanta-sdk-video beside the
/// loaded audio library, or one level further up.
class LibraryUse {
  public:
    /// Throws std::runtime_error, in words, where the model is missing or can't be used.
    LibraryUse();
    ~LibraryUse();
    LibraryUse(LibraryUse const&) = delete;
    LibraryUse& operator=(LibraryUse const&) = delete;

    /// The name that the model is registered under.
    static constexpr char const* model = "talvo_noise";
};

} // namespace TALVO::LADSPA
