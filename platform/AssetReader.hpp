#pragma once

#include <platform/AffineTransform.hpp>
#include <platform/URL.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

namespace corvanta {

/// How a video track is coded.
struct VideoTrackFormat {
    /// Among the file's video streams, as ffmpeg counts them: cover images are counted too.
    std::ptrdiff_t position = 0;
    /// ffmpeg's name of the codec.
    std::string codec;
    /// Whether the track runs at exactly this rate, in frames a second, by its base rate and on average.
    bool hasExactRate(int framesPerSecond) const {
        return isRate(baseRate, framesPerSecond) && isRate(averageRate, framesPerSecond);
    }

    struct Fraction {
        int numerator = 0;
        int denominator = 1;
    };
    Fraction baseRate;
    Fraction averageRate;
    /// Whether its pictures state when they are shown, as far as its beginning tells.
    bool hasTimes = true;

  private:
    static bool isRate(Fraction rate, int framesPerSecond) {
        return rate.denominator != 0 && rate.numerator == rate.denominator * framesPerSecond;
    }
};

/// Reads what a media file says of itself, in process and without decoding. A cover image is no video track.
/// One thread at a time.
class AssetReader {
  public:
    /// Opens the file at `url`'s path. Throws PlatformError if it can't be opened or is no media file.
    /// Opening and each later call end with an error after 30 s, and within one read once `stop` is
    /// requested.
    explicit AssetReader(const URL& url, std::stop_token stop = {});
    AssetReader(AssetReader&&) noexcept;
    AssetReader& operator=(AssetReader&&) noexcept;
    ~AssetReader();

    /// Seconds. Throws PlatformError if the file states no duration and none can be found.
    double duration();

    /// Seconds, as the file's head states it; nothing if it states none.
    std::optional<double> statedDuration() const;

    /// How many tracks of any kind the file's head states.
    std::size_t trackCount() const;

    /// The display transform of the first video track, the identity if it carries none; nothing without such
    /// a track.
    std::optional<AffineTransform> firstVideoTrackTransform();

    /// Nothing without a video track. Reads on in the file. Throws PlatformError if the tracks can't be read.
    std::optional<VideoTrackFormat> firstVideoTrackFormat();

    /// Throws PlatformError if the tracks can't be read.
    bool hasAudioTrack();

    /// The number, among the file's tracks, of the sound that ffmpeg takes when none is named: that of the
    /// default track with the most channels. Nothing without sound. Throws PlatformError if the tracks can't
    /// be read.
    std::optional<int> soundTrack();

    /// What the packets of the first video track take, and how long that sound is that ffmpeg takes when none
    /// is named, in seconds, where the file's head states it; else nothing.
    std::optional<double> statedPictureBytes() const;
    std::optional<double> statedSoundDuration() const;

    /// What the packets of the first video track take from its first key picture at `start` or later up to
    /// `end`, in seconds by decoding time from the file's start; 0 where the head doesn't list them (it does
    /// in mp4 and mov).
    std::int64_t listedPictureBytes(double start, double end) const;

    /// The numbers of the pictures that go with the file as a whole, among its tracks.
    std::vector<int> coverTracks() const;

    /// Whether the file as a whole carries tags of an application's own, named like hosts of the network the
    /// other way round ("com.example.place").
    bool hasApplicationTags() const;

  private:
    struct Context;
    std::unique_ptr<Context> context_;
};

} // namespace corvanta
