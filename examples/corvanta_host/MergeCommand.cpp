#include "Commands.hpp"
#include "EncodingOptions.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "PictureSize.hpp"
#include "RequestRun.hpp"
#include "SeveralJobs.hpp"
#include "TrackChecks.hpp"
#include "TrackSelection.hpp"
#include "Values.hpp"
#include "Words.hpp"

#include <memory>
#include <optional>

using namespace corvanta;

namespace {

struct CommonOptions {
    CommonOptions(CLI::App& command, bool severalFiles)
        : arguments(command, severalFiles), encoding(command) {
        command.add_option("--width", size.width, "Width of the picture in pixels, even, from 128 on");
        command.add_option(
            "--height", size.height,
            "Height; one side alone keeps the shape of the largest picture. Clips that were "
            "taken upright (rotation -90 in `info`) need both, else they become small in a wide "
            "frame");
        command.add_option("--fps", rate, "Output frame rate")
            ->check(oneOf({"24", "25", "30", "50", "60"}))
            ->capture_default_str();
    }

    FileArguments arguments;
    EncodingOptions encoding;
    PictureSize size;
    std::string rate = "30";
    std::vector<std::string> videoTracks;
};

struct MergeOptions : CommonOptions {
    using CommonOptions::CommonOptions;
    std::vector<std::string> audioTracks;
};

struct EncodeOptions : CommonOptions {
    using CommonOptions::CommonOptions;
    std::vector<std::int64_t> audioTracks;
};

using Information = std::vector<CorvantaSdkVideoInformation>;

// What the run is about, once all that can be refused has been.
struct Job {
    std::vector<CorvantaSdkVideoFile> inputs;
    Output output;
    PictureSize size;
    std::optional<CorvantaSdkVideoEncoding> encoding;
};

template <typename RequireTracks>
Job prepared(Console& console, const CommonOptions& options, const Files& files, bool selectsTracks,
             RequireTracks requireTracks) {
    requireSide("--width", options.size.width);
    requireSide("--height", options.size.height);
    Job job{inputFiles(files.inputs), outputFor(files, "mp4"), options.size, options.encoding.chosen()};
    const Information information = requireReadable(job.inputs);
    requireTracks(information);
    if (job.encoding && !selectsTracks) {
        requireEncodable(*job.encoding, information);
    }
    const bool hasOneSide = options.size.width.has_value() != options.size.height.has_value();
    if ((selectsTracks || hasOneSide) && (!options.size.width || !options.size.height)) {
        requireSizes(information);
    }
    if (hasOneSide && !selectsTracks) {
        job.size = completed(job.size, information);
    }
    if (!options.size.width && !options.size.height && !selectsTracks) {
        hintAtUprightClips(console, information);
    }
    return job;
}

template <typename Builder>
void runBuilder(Console& console, Builder& builder, const Job& job, const CommonOptions& options) {
    builder.width = job.size.width;
    builder.height = job.size.height;
    builder.framesRate = *CorvantaSdkVideoFrameRate::fromRawValue(options.rate);
    builder.encoding = job.encoding;
    runRequest(console, builder.build(), job.output.path);
}

void merge(Console& console, const MergeOptions& options) {
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks;
    for (const std::string& text : options.videoTracks) {
        videoTracks.push_back(videoTrackFrom(text));
    }
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks;
    for (const std::string& text : options.audioTracks) {
        audioTracks.push_back(audioTrackFrom(text));
    }
    const Job job = prepared(
        console, options, options.arguments.files(), !videoTracks.empty() || !audioTracks.empty(),
        [&](const Information& information) { requireStreams(videoTracks, audioTracks, information); });
    auto builder = CorvantaSdkVideo->MergeBuilder(job.inputs, job.output.location);
    builder.videoTracks = videoTracks;
    builder.audioTracks = audioTracks;
    runBuilder(console, builder, job, options);
}

void encode(Console& console, const EncodeOptions& options, const Files& files) {
    std::vector<CorvantaSdkVideoEncodeVideoEntry> videoTracks;
    for (const std::string& text : options.videoTracks) {
        videoTracks.push_back(encodeEntryFrom(text));
    }
    const Job job = prepared(console, options, files, !videoTracks.empty() || !options.audioTracks.empty(),
                             [&](const Information& information) {
                                 requireStreams(videoTracks, options.audioTracks, information.front());
                             });
    auto builder = CorvantaSdkVideo->EncodingBuilder(job.inputs.front(), job.output.location);
    builder.videoTracks = videoTracks;
    builder.audioTracks = options.audioTracks;
    runBuilder(console, builder, job, options);
}

template <typename Values>
void addRepeated(CLI::App& command, const std::string& name, Values& values, const std::string& type,
                 const std::string& description) {
    command.add_option(name, values, description + "; can be repeated")
        ->expected(1)
        ->type_name(type)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
}

} // namespace

void addMergeCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("merge", "Join unlike videos by re-encoding them");
    const auto options = std::make_shared<MergeOptions>(*command, true);
    addRepeated(*command, "--video-track", options->videoTracks, "VIDEO_TRACK",
                "An output video track, FILE:STREAM,FILE:STREAM[@WxH], files counted from 0 and streams as "
                "`info` numbers them");
    addRepeated(*command, "--audio-track", options->audioTracks, "AUDIO_TRACK",
                "An output audio track, FILE:STREAM,FILE:STREAM");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { merge(console, *options); }; });
}

void addEncodeCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("encode", "Re-encode one video");
    const auto options = std::make_shared<EncodeOptions>(*command, false);
    addRepeated(*command, "--video", options->videoTracks, "VIDEO_STREAM",
                "A video stream to keep, STREAM[@WxH]");
    addRepeated(*command, "--audio", options->audioTracks, "AUDIO_STREAM", "An audio stream to keep");
    command->callback([&chosen, options] {
        chosen = [options](Console& console) {
            runEachFile(console, options->arguments,
                        [&](const Files& files) { encode(console, *options, files); });
        };
    });
}
