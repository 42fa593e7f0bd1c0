#include "Commands.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>
#include <platform/FileManager.hpp>

#include <memory>
#include <stdexcept>

using namespace corvanta;

namespace {

struct CleanOptions {
    std::string output;
    std::string input;
};

void clean(Console& console, const CleanOptions& options) {
    const auto file = inputFiles({options.input}).front();
    const auto information = runInterruptible(CorvantaSdkVideo->getVideosInformation({file}));
    CorvantaSdkVideoNoiseCancellationResult result;
    {
        const Progress progress(console, "clean", information.front().durationMillis);
        result = runInterruptible(
            CorvantaSdkVideo->engine()->clearNoiseForFile(file, outputLocation(options.output)));
    }
    // The module doesn't report a failure to write the video.
    if (!FileManager::fileExists(result.fileURL.path())) {
        throw std::runtime_error("the cleaned video could not be written");
    }
    if (console.json()) {
        console.print(nlohmann::ordered_json{{"fileURL", result.fileURL.absoluteString()}});
    } else {
        console.print("{}\n", result.fileURL.path());
    }
}

} // namespace

void addCleanCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean", "Remove background noise from a video's sound");
    const auto options = std::make_shared<CleanOptions>();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("FILE", options->input, "Video file")->required();
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { clean(console, *options); }; });
}
