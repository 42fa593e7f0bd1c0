#include "Commands.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"
#include "SeveralJobs.hpp"
#include "Values.hpp"

#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include <nlohmann/json.hpp>

#include <cmath>
#include <memory>

using namespace corvanta;

namespace {

/// One file in, one file out, and what the track is like.
struct TracksOptions {
    std::string duration = "1000";
    std::int64_t width = 640;
    std::int64_t height = 480;

    std::int64_t durationMillis() const {
        return std::llround(secondsFrom("--duration", duration, 0.001) * 1000);
    }
};

using Options = std::shared_ptr<TracksOptions>;
using Operation = Task<> (*)(const TracksManager&, URL, URL, const TracksOptions&);

void change(Console& console, const FileArguments& arguments, const TracksOptions& options,
            Operation operation) {
    requireSideWithin("--width", options.width, leastTrackSide, mostTrackSide);
    requireSideWithin("--height", options.height, leastTrackSide, mostTrackSide);
    runEachFile(console, arguments, [&](const Files& files) {
        const auto inputs = inputFiles(files.inputs);
        const std::string output = outputPath(files);
        requireReadable(inputs);
        UnfinishedOutput unfinished(output);
        {
            const Progress progress(console, "tracks");
            const TracksManager manager;
            runInterruptible(operation(manager, inputs.front().url(), URL::fromFilePath(output), options));
        }
        unfinished.keep();
        console.resultAt(output, {});
    });
}

CLI::App* addOperation(CLI::App& tracks, Command& chosen, const Options& options, const char* name,
                       const char* description, Operation operation) {
    auto* command = tracks.add_subcommand(name, description);
    const FileArguments arguments(*command, false, FileArguments::Out::last);
    command->callback([&chosen, options, arguments, operation] {
        chosen = [options, arguments, operation](Console& console) {
            change(console, arguments, *options, operation);
        };
    });
    return command;
}

} // namespace

void addTracksCommand(CLI::App& app, Command& chosen) {
    auto* tracks = app.add_subcommand("tracks", "Add a blank track, or remove all tracks of a kind");
    tracks->require_subcommand(1);
    const auto options = std::make_shared<TracksOptions>();

    auto* addVideo =
        addOperation(*tracks, chosen, options, "add-video", "Add a red video track",
                     [](const TracksManager& manager, URL input, URL output, const TracksOptions& track) {
                         return manager.addVideoTrack(std::move(input), std::move(output),
                                                      track.durationMillis(), track.width, track.height);
                     });
    auto* addAudio = addOperation(
        *tracks, chosen, options, "add-audio", "Add a silent audio track",
        [](const TracksManager& manager, URL input, URL output, const TracksOptions& track) {
            return manager.addAudioTrack(std::move(input), std::move(output), track.durationMillis());
        });
    for (auto* command : {addVideo, addAudio}) {
        command->add_option("--duration", options->duration, "Milliseconds, 1.5s or 0:01.5")
            ->capture_default_str();
    }
    addVideo->add_option("--width", options->width, "Pixels")->capture_default_str();
    addVideo->add_option("--height", options->height, "Pixels")->capture_default_str();

    addOperation(*tracks, chosen, options, "remove-video", "Keep the sound alone",
                 [](const TracksManager& manager, URL input, URL output, const TracksOptions&) {
                     return manager.removeVideoTrack(std::move(input), std::move(output));
                 });
    addOperation(*tracks, chosen, options, "remove-audio", "Keep the picture alone",
                 [](const TracksManager& manager, URL input, URL output, const TracksOptions&) {
                     return manager.removeAudioTrack(std::move(input), std::move(output));
                 });
}
