#pragma once

#include "support/MediaFixtures.hpp"

#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGMergeCommandGenerator.hpp>
#include <platform/Task.hpp>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvanta::test {

/// A merge of real files. The script is written from their probes and run by the executor.
struct MergeRun {
    std::vector<CorvantaSdkVideoInformation> files;
    CorvantaSdkVideoFrameRate rate = CorvantaSdkVideoFrameRate::thirtyFps;
    std::optional<double> width = {};
    std::optional<double> height = {};
    std::vector<CorvantaSdkVideoMergeVideoTrack> videoTracks = {};
    std::vector<CorvantaSdkVideoMergeAudioTrack> audioTracks = {};

    std::string scriptFor(const std::string& output) const {
        return FFMPEGMergeCommandGenerator()
            .generateCommand(files, width, height, videoTracks, audioTracks, rate, output)
            .script;
    }

    /// Gives the probe of the output; throws what the executor throws.
    CorvantaSdkVideoInformation into(const std::string& output) const {
        FFMPEGCommandExecutorImplementation executor;
        runBlocking(executor.executeFFMPEGCommand(scriptFor(output)));
        return probed(output);
    }
};

} // namespace corvanta::test
