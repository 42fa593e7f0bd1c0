#pragma once

#include <CorvantaSdkVideo/Commands/Encoding/EncoderRun.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoEncoding.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <platform/FFmpegEncoders.hpp>
#include <platform/Task.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// What the command of a merge is made from.
struct MergeCommand {
    FFMPEGMergeCommandGenerator generator = {};
    std::vector<CorvantaSdkVideoInformation> inputs = {};
    std::optional<double> width = {};
    std::optional<double> height = {};
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks = {};
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks = {};
    CorvantaSdkVideoFrameRate framesRate = CorvantaSdkVideoFrameRate::thirtyFps;
    std::string outputPath = {};
    /// What keeps the tags of the first file, with a blank before each option; empty: as ffmpeg does it.
    std::string tagOptions = {};

    std::string script(const MergeForm& form) const;
};

/// The commands to try, in this order, until one succeeds. Without an encoding there is one, in the form that
/// every request had. Throws CorvantaSdkVideoError, `encodingFailed`, with what is wrong with the encoding,
/// or with it for these inputs, and PlatformError if ffmpeg can't be asked for its encoders.
Task<std::vector<EncoderRun>> encoderRuns(MergeCommand command,
                                          std::optional<CorvantaSdkVideoEncoding> encoding);

/// The same without asking: for an ffmpeg with the encoders of `available`.
std::vector<EncoderRun> encoderRuns(const MergeCommand& command, const CorvantaSdkVideoEncoding& encoding,
                                    const EncoderNames& available);

} // namespace corvanta
