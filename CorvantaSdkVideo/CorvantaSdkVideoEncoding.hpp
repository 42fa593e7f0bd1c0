#pragma once

#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvanta {

/// How a merge or an encode writes picture and sound, where the host wants something else than the default:
/// MPEG-4 Part 2 and AAC at ffmpeg's own rates. What is absent here is as it is by default. A value; stored
/// with its request.
struct CorvantaSdkVideoEncoding {
    enum class Codec {
        /// MPEG-4 Part 2: the default of a request without an encoding.
        mpeg4,
        h264,
        hevc,
        av1,
    };

    /// What a viewer sees: `low` shows blocks and blur in motion, `high` differs from the source only side by
    /// side, `best` hardly then. Each step about halves or doubles the file.
    enum class Quality { low, medium, high, best };

    /// How much time is spent on making the file smaller, by x264's names. Other encoders take the nearest
    /// of their own.
    enum class Preset { ultrafast, superfast, veryfast, faster, fast, medium, slow, slower, veryslow };

    /// Absent: `h264` if anything else is said of the picture (quality, crf, preset or encoders), else the
    /// picture is as by default.
    ///
    /// A source of high dynamic range (PQ or HLG) or wide gamut (BT.2020) keeps its colours, in 10 bits, with
    /// `hevc` and `av1`; with another codec the run is refused. Other sources of more than 8 bits keep 10
    /// with `hevc` and `av1`, 8 with the others. Sources of different ranges can't become one track.
    std::optional<Codec> codec = {};
    /// Absent, and without `crf`: `medium`. Not together with `crf`.
    std::optional<Quality> quality = {};
    /// A constant rate factor, lower is better: 0 to 51 for H.264 and HEVC (0 is lossless H.264 in software),
    /// 1 to 63 for AV1, 1 to 31 for MPEG-4, whose quantiser it is. Hardware encoders take it as their own
    /// constant quality, which is near.
    std::optional<std::int64_t> crf = {};
    /// Absent: `medium`. MPEG-4 and VAAPI have no such choice.
    std::optional<Preset> preset = {};
    /// Bits per second of each sound track, 8,000 to 1,000,000; absent: ffmpeg's choice, 128,000 for stereo.
    std::optional<std::int64_t> audioBitRate = {};
    /// Hertz, one of AAC's rates from 7,350 to 96,000; absent: 44,100. More than every input sound has is
    /// refused.
    std::optional<std::int64_t> audioSampleRate = {};
    /// 1, 2, 6 (5.1) or 8 (7.1); absent: 2. More than every input sound has is refused.
    std::optional<std::int64_t> audioChannels = {};
    /// Whether the index stands before the media, so that a player on the net starts at once. Takes one more
    /// pass over the file.
    bool faststart = false;
    /// Encoders of the codec to try, in this order, by ffmpeg's names (see `knownEncoders`); what the ffmpeg
    /// at hand hasn't got is passed over. If a hardware encoder fails, the run is repeated with the next one;
    /// one in software is the last. Empty: the known ones in their order, of hardware only those whose
    /// device is there.
    std::vector<std::string> encoders = {};

    /// Whether anything is said of the picture.
    bool concernsPicture() const;
    /// The picture's codec; absent if the picture is as by default.
    std::optional<Codec> pictureCodec() const;

    /// What is wrong with these values by themselves, in words; nothing if they can be used. A request with a
    /// flaw fails when it is processed.
    std::optional<std::string> flaw() const;

    friend bool operator==(const CorvantaSdkVideoEncoding&, const CorvantaSdkVideoEncoding&) = default;
};

/// What keeps all the tracks of these files from being encoded so, in words: a flaw, colours that the codec
/// can't hold, more sound than there is. Nothing if they can be. Doesn't ask which encoders there are.
std::optional<std::string> obstacleToEncoding(const CorvantaSdkVideoEncoding& encoding,
                                              const std::vector<CorvantaSdkVideoInformation>& files);

/// ffmpeg's names of the encoders that can be chosen for a codec, hardware first.
std::vector<std::string> knownEncoders(CorvantaSdkVideoEncoding::Codec codec);

/// The name of the case, as stored and as `corvanta_host` takes it.
std::string_view name(CorvantaSdkVideoEncoding::Codec codec);
std::string_view name(CorvantaSdkVideoEncoding::Quality quality);
std::string_view name(CorvantaSdkVideoEncoding::Preset preset);

/// The case of that name, of `Codec`, `Quality` or `Preset`; nothing for any other text.
template <typename Choice>
std::optional<Choice> choiceNamed(std::string_view name);

/// All names of `Codec`, `Quality` or `Preset`, in their order.
template <typename Choice>
std::vector<std::string> choiceNames();

} // namespace corvanta
