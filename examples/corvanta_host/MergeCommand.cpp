#include "Commands.hpp"
#include "RequestRun.hpp"
#include "TrackSelection.hpp"

#include <memory>
#include <optional>

using namespace corvanta;

namespace {

struct CommonOptions {
    std::string output;
    std::optional<double> width;
    std::optional<double> height;
    std::string rate = "30";
};

struct MergeOptions : CommonOptions {
    std::vector<std::string> inputs;
    std::vector<std::string> videoTracks;
    std::vector<std::string> audioTracks;
};

struct EncodeOptions : CommonOptions {
    std::string input;
    std::vector<std::string> videoTracks;
    std::vector<std::int64_t> audioTracks;
};

void addCommonOptions(CLI::App& command, CommonOptions& options) {
    command.add_option("--width", options.width, "Output width in pixels");
    command.add_option("--height", options.height, "Output height in pixels");
    command.add_option("--fps", options.rate, "Output frame rate")
        ->check(CLI::IsMember({"24", "25", "30", "50", "60"}))
        ->capture_default_str();
}

template <typename Builder>
void setCommon(Builder& builder, const CommonOptions& options) {
    builder.width = options.width;
    builder.height = options.height;
    builder.framesRate = *CorvantaSdkVideoFrameRate::fromRawValue(options.rate);
}

void merge(Console& console, const MergeOptions& options) {
    auto builder = CorvantaSdkVideo->MergeBuilder(inputFiles(options.inputs), outputLocation(options.output));
    setCommon(builder, options);
    for (const std::string& text : options.videoTracks) {
        builder.videoTracks.push_back(videoTrackFrom(text));
    }
    for (const std::string& text : options.audioTracks) {
        builder.audioTracks.push_back(audioTrackFrom(text));
    }
    runRequest(console, builder.build());
}

void encode(Console& console, const EncodeOptions& options) {
    auto builder = CorvantaSdkVideo->EncodingBuilder(inputFiles({options.input}).front(),
                                                     outputLocation(options.output));
    setCommon(builder, options);
    for (const std::string& text : options.videoTracks) {
        builder.videoTracks.push_back(encodeEntryFrom(text));
    }
    builder.audioTracks = options.audioTracks;
    runRequest(console, builder.build());
}

} // namespace

void addMergeCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("merge", "Join unlike videos by re-encoding them");
    const auto options = std::make_shared<MergeOptions>();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("FILE", options->inputs, "Video files, in order")->required();
    addCommonOptions(*command, *options);
    command
        ->add_option("--video-track", options->videoTracks,
                     "An output video track, FILE:STREAM,FILE:STREAM[@WxH]; can be repeated")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command
        ->add_option("--audio-track", options->audioTracks,
                     "An output audio track, FILE:STREAM,FILE:STREAM; can be repeated")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { merge(console, *options); }; });
}

void addEncodeCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("encode", "Re-encode one video");
    const auto options = std::make_shared<EncodeOptions>();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("FILE", options->input, "Video file")->required();
    addCommonOptions(*command, *options);
    command
        ->add_option("--video", options->videoTracks, "A video stream to keep, STREAM[@WxH]; can be repeated")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->add_option("--audio", options->audioTracks, "An audio stream to keep; can be repeated")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { encode(console, *options); }; });
}
