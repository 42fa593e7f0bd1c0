#include <CorvantaSdkVideo/Commands/Encoding/EncodingForms.hpp>

#include <CorvantaSdkVideo/Commands/Encoding/Encoders.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/PictureRange.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/MergeTracks.hpp>
#include <platform/VideoDevices.hpp>

#include <boost/algorithm/string/join.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace corvanta {

namespace {

using Encoding = CorvantaSdkVideoEncoding;
using Codec = Encoding::Codec;

CorvantaSdkVideoError refusal(std::string why) {
    return CorvantaSdkVideoError(CorvantaSdkVideoError::encodingFailed, std::move(why));
}

bool holdsDeepPictures(Codec codec) { return codec == Codec::hevc || codec == Codec::av1; }

// What the pictures of all output tracks need of their encoder.
struct Pictures {
    std::vector<PictureRange> tracks;
    bool isDeep = false;
};

Pictures picturesOf(const std::vector<VideoTrack>& tracks, Codec codec) {
    Pictures pictures;
    for (const VideoTrack& track : tracks) {
        const PictureRange& range = pictures.tracks.emplace_back(rangeOf(track));
        const bool isStandard = range.kind == PictureRange::Kind::standard;
        if (!isStandard && !holdsDeepPictures(codec)) {
            throw refusal("the picture of " + range.path + " is " + described(range.kind) + ", which " +
                          std::string(name(codec)) + " can't hold: hevc and av1 can");
        }
        pictures.isDeep = pictures.isDeep || (holdsDeepPictures(codec) && (range.isDeep || !isStandard));
    }
    return pictures;
}

// The largest value among the sounds; nothing without sound.
std::optional<std::int64_t> largest(const std::vector<AudioTrack>& tracks,
                                    std::int64_t CorvantaSdkVideoAudioTrackInformation::*value) {
    std::optional<std::int64_t> found;
    for (const AudioTrack& track : tracks) {
        for (const AudioItem& item : track.tracks) {
            if (item.trackInfo != nullptr) {
                found = std::max(found.value_or(0), item.trackInfo->*value);
            }
        }
    }
    return found;
}

void requireAtMost(std::optional<std::int64_t> wanted, std::optional<std::int64_t> most,
                   const std::string& unit) {
    if (wanted && most && *wanted > *most) {
        throw refusal("the sound can't have " + std::to_string(*wanted) + " " + unit + ": the inputs have " +
                      std::to_string(*most) + " at most");
    }
}

void requireSound(const Encoding& encoding, const std::vector<AudioTrack>& tracks) {
    using Sound = CorvantaSdkVideoAudioTrackInformation;
    requireAtMost(encoding.audioSampleRate, largest(tracks, &Sound::sampleRate), "Hz");
    requireAtMost(encoding.audioChannels, largest(tracks, &Sound::channels), "channels");
}

std::string layoutOf(std::int64_t channels) {
    switch (channels) {
    case 1:
        return "mono";
    case 6:
        return "5.1";
    case 8:
        return "7.1";
    default:
        return "stereo";
    }
}

bool hasDevice(const Encoder& encoder) {
    switch (encoder.device) {
    case Encoder::Device::none:
        break;
    case Encoder::Device::nvidia:
        return hasNvidiaDevice();
    case Encoder::Device::renderNode:
        return firstRenderNode().has_value();
    }
    return true;
}

std::vector<const Encoder*> wantedEncoders(const Encoding& encoding, Codec codec) {
    std::vector<const Encoder*> known = encodersOf(codec);
    if (encoding.encoders.empty()) {
        std::erase_if(known, [](const Encoder* encoder) { return !hasDevice(*encoder); });
        return known;
    }
    std::vector<const Encoder*> wanted;
    for (const std::string& name : encoding.encoders) {
        wanted.push_back(*std::ranges::find(known, std::string_view(name), &Encoder::name));
    }
    return wanted;
}

// The last one is in software, unless the host names hardware alone.
std::vector<const Encoder*> encodersToTry(const Encoding& encoding, Codec codec,
                                          const EncoderNames& available) {
    std::vector<const Encoder*> chosen;
    std::vector<std::string> names;
    for (const Encoder* encoder : wantedEncoders(encoding, codec)) {
        names.emplace_back(encoder->name);
        if (available.contains(encoder->name)) {
            chosen.push_back(encoder);
            if (!encoder->isHardware()) {
                return chosen;
            }
        }
    }
    if (chosen.empty()) {
        throw refusal("the ffmpeg at hand can't encode " + std::string(name(codec)) + ": it has none of " +
                      boost::algorithm::join(names, ", "));
    }
    return chosen;
}

std::string colorFilter(const PictureRange& range) {
    if (range.kind == PictureRange::Kind::standard) {
        return "";
    }
    const auto& [colorRange, primaries, transfer, matrix] = range.color;
    return ",setparams=range=" + colorRange + ":color_primaries=" + primaries + ":color_trc=" + transfer +
           ":colorspace=" + matrix;
}

// What concerns the sound and the file.
MergeForm commonForm(const Encoding& encoding) {
    MergeForm form;
    form.sampleRate = encoding.audioSampleRate.value_or(form.sampleRate);
    form.channels = encoding.audioChannels.value_or(form.channels);
    form.channelLayout = layoutOf(form.channels);
    if (encoding.audioBitRate) {
        form.outputOptions += "-b:a " + std::to_string(*encoding.audioBitRate) + " ";
    }
    if (encoding.faststart) {
        form.outputOptions += "-movflags +faststart ";
    }
    return form;
}

MergeForm formFor(const Encoder& encoder, const Encoding& encoding, const Pictures& pictures,
                  CorvantaSdkVideoFrameRate rate) {
    MergeForm form = commonForm(encoding);
    const std::string pixelFormat(pictures.isDeep ? encoder.deepPixelFormat : encoder.pixelFormat);
    form.pictureOptions = "-c:v " + std::string(encoder.name);
    if (!encoder.uploadsPictures()) {
        form.pictureOptions += " -pix_fmt " + pixelFormat;
    } else {
        form.globalOptions = "-vaapi_device " + firstRenderNode().value_or("/dev/dri/renderD128") + " ";
    }
    for (const PictureRange& range : pictures.tracks) {
        form.pictureFilters.push_back(
            colorFilter(range) + (encoder.uploadsPictures() ? ",format=" + pixelFormat + ",hwupload" : ""));
    }
    std::int64_t framesPerSecond = 0;
    const std::string_view raw = rate.rawValue();
    std::from_chars(raw.data(), raw.data() + raw.size(), framesPerSecond);
    // In place of the preset of the common form, which is MPEG-4's and has no effect there.
    constexpr std::string_view defaultPreset = "-preset medium ";
    form.outputOptions.replace(0, defaultPreset.size(), optionsOf(encoder, encoding, framesPerSecond) + " ");
    return form;
}

} // namespace

std::string MergeCommand::script(const MergeForm& given) const {
    MergeForm form = given;
    form.outputOptions += tagOptions.empty() ? "" : tagOptions.substr(1) + " ";
    return generator
        .generateCommand(inputs, width, height, videoTracks, audioTracks, framesRate, outputPath, form)
        .script;
}

std::vector<EncoderRun> encoderRuns(const MergeCommand& command, const Encoding& encoding,
                                    const EncoderNames& available) {
    if (const auto flaw = encoding.flaw()) {
        throw refusal(*flaw);
    }
    requireSound(encoding, convertAudioInput(command.inputs, command.audioTracks));
    const auto codec = encoding.pictureCodec();
    const auto tracks = convertVideoInput(command.inputs, command.videoTracks, command.width, command.height);
    if (!codec || tracks.empty()) {
        return {{"", command.script(commonForm(encoding))}};
    }
    const Pictures pictures = picturesOf(tracks, *codec);
    std::vector<EncoderRun> runs;
    for (const Encoder* encoder : encodersToTry(encoding, *codec, available)) {
        runs.push_back({std::string(encoder->name),
                        command.script(formFor(*encoder, encoding, pictures, command.framesRate))});
    }
    return runs;
}

Task<std::vector<EncoderRun>> encoderRuns(MergeCommand command, std::optional<Encoding> encoding) {
    std::vector<EncoderRun> runs;
    if (!encoding) {
        EncoderRun run{"", command.script({})};
        runs.push_back(std::move(run));
        co_return runs;
    }
    auto available = std::make_shared<const EncoderNames>();
    if (encoding->concernsPicture() && !encoding->flaw()) {
        available = co_await encodersOfFFmpeg();
    }
    runs = encoderRuns(command, *encoding, *available);
    co_return runs;
}

std::optional<std::string> obstacleToEncoding(const Encoding& encoding,
                                              const std::vector<CorvantaSdkVideoInformation>& files) {
    if (auto flaw = encoding.flaw()) {
        return flaw;
    }
    try {
        requireSound(encoding, convertAudioInput(files, {}));
        if (const auto codec = encoding.pictureCodec()) {
            // Of whatever size.
            picturesOf(convertVideoInput(files, {}, 128, 128), *codec);
        }
    } catch (const CorvantaSdkVideoError& refused) {
        return refused.details();
    }
    return std::nullopt;
}

} // namespace corvanta
