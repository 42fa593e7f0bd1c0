#include "Commands.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <CorvantaSdkVideo/TracksManager/TracksManager.hpp>

#include <nlohmann/json.hpp>

#include <filesystem>
#include <functional>
#include <memory>

using namespace corvanta;

namespace {

struct TracksOptions {
    std::string input;
    std::string output;
    std::int64_t durationMillis = 1000;
    std::int64_t width = 640;
    std::int64_t height = 480;
};

using Operation = std::function<Task<>(TracksManager&, const TracksOptions&)>;

URL inputOf(const TracksOptions& options) { return URL::fromFilePath(options.input); }
URL outputOf(const TracksOptions& options) {
    return URL::fromFilePath(std::filesystem::absolute(options.output).string());
}

void change(Console& console, const TracksOptions& options, const Operation& operation) {
    const Progress progress(console, "tracks", std::nullopt);
    TracksManager manager;
    runInterruptible(operation(manager, options));
    const URL output = outputOf(options);
    if (console.json()) {
        console.print(nlohmann::ordered_json{{"videoURL", output.absoluteString()}});
    } else {
        console.print("{}\n", output.path());
    }
}

CLI::App* addOperation(CLI::App& tracks, Command& chosen, const std::shared_ptr<TracksOptions>& options,
                       const char* name, const char* description, Operation operation) {
    auto* command = tracks.add_subcommand(name, description);
    command->add_option("IN", options->input, "Video file")->required();
    command->add_option("OUT", options->output, "Where to write it, with its extension")->required();
    command->callback([&chosen, options, operation = std::move(operation)] {
        chosen = [options, operation](Console& console) { change(console, *options, operation); };
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
                     [](TracksManager& manager, const TracksOptions& chosenOptions) {
                         return manager.addVideoTrack(inputOf(chosenOptions), outputOf(chosenOptions),
                                                      chosenOptions.durationMillis, chosenOptions.width,
                                                      chosenOptions.height);
                     });
    auto* addAudio =
        addOperation(*tracks, chosen, options, "add-audio", "Add a silent audio track",
                     [](TracksManager& manager, const TracksOptions& chosenOptions) {
                         return manager.addAudioTrack(inputOf(chosenOptions), outputOf(chosenOptions),
                                                      chosenOptions.durationMillis);
                     });
    for (auto* command : {addVideo, addAudio}) {
        command->add_option("--duration", options->durationMillis, "Milliseconds")->capture_default_str();
    }
    addVideo->add_option("--width", options->width, "Pixels")->capture_default_str();
    addVideo->add_option("--height", options->height, "Pixels")->capture_default_str();

    addOperation(*tracks, chosen, options, "remove-video", "Keep the sound alone",
                 [](TracksManager& manager, const TracksOptions& chosenOptions) {
                     return manager.removeVideoTrack(inputOf(chosenOptions), outputOf(chosenOptions));
                 });
    addOperation(*tracks, chosen, options, "remove-audio", "Keep the picture alone",
                 [](TracksManager& manager, const TracksOptions& chosenOptions) {
                     return manager.removeAudioTrack(inputOf(chosenOptions), outputOf(chosenOptions));
                 });
}
