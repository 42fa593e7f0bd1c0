#pragma once

#include "library_use.hpp"

#include <cstddef>
#include <memory>
#include <vector>

namespace TALVO::LADSPA {

/// One channel through the noise cleaner in blocks of any length. What comes out is the cleaned sound times
/// the strength plus the sound as it came in times the rest, both late by latency(). Cleaned sound holds what
/// lies below 8 kHz; the other keeps all of its range. One thread at a time.
class NoiseInstance {
  public:
    /// For 16000, 24000, 32000, 44100, 48000, 88200 or 96000 samples a second; throws std::runtime_error, in
    /// words, for others and without a model.
    explicit NoiseInstance(unsigned long rate);

    /// Forgets all sound that has been heard.
    void restart();

    /// Allocates nothing and takes no lock. `in` and `out` may be the same memory. The strength, 0 to 1, is
    /// reached within 10 ms; the first one at once. A stream whose cleaner fails goes on untouched.
    /// What is below the last bit of 16 counts as silence, at which the model rests.
    void run(float const* in, float* out, std::size_t count, float strength);

    /// Samples that the output is late by, at every strength.
    std::size_t latency() const { return untouched_.size(); }

  private:
    struct Close {
        void operator()(void* session) const;
    };
    using Session = std::unique_ptr<void, Close>;

    Session open() const;
    /// Cleans block_ in place.
    bool clean(Session const& session);
    /// How late a session gives what it is given, in samples.
    std::size_t measuredDelay();
    /// Cleans a block that is complete.
    void cleanNext();
    float mixed(float cleaned, float untouched) const;

    LibraryUse const library_;
    int rate_;
    std::vector<float> block_;     ///< what comes in replaces what goes out, sample by sample
    std::vector<float> untouched_; ///< a ring, as long as the latency
    std::size_t atBlock_ = 0;
    std::size_t atUntouched_ = 0;
    float strength_ = 1.0f;
    bool starts_ = true;
    bool works_ = true;
    Session session_;
};

} // namespace TALVO::LADSPA
