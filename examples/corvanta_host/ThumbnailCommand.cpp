#include "Commands.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"
#include "SeveralJobs.hpp"
#include "Values.hpp"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

using namespace corvanta;

namespace {

struct ThumbnailOptions {
    explicit ThumbnailOptions(CLI::App& command) : arguments(command, false, FileArguments::Out::last) {}

    FileArguments arguments;
    std::string position = "1000";
    std::optional<std::int64_t> width;
    std::optional<std::int64_t> height;
};

// What the picture's format can hold.
constexpr std::int64_t mostThumbnailSide = 65500;

void makeThumbnail(Console& console, const ThumbnailOptions& options, double position, const Files& files) {
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, "jpg");
    {
        const Progress progress(console, "thumbnail");
        runInterruptible(CorvantaSdkVideo->generateThumbnail(inputs.front(), output.location, position * 1000,
                                                             options.width, options.height,
                                                             progress.listenerToPictures()));
    }
    console.resultAt(output.path, {});
}

void thumbnail(Console& console, const ThumbnailOptions& options) {
    const double position = secondsFrom("--at", options.position, 0.001);
    requireSideWithin("--width", options.width, 1, mostThumbnailSide);
    requireSideWithin("--height", options.height, 1, mostThumbnailSide);
    runEachFile(console, options.arguments,
                [&](const Files& files) { makeThumbnail(console, options, position, files); });
}

} // namespace

void addThumbnailCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("thumbnail", "Write one frame as a JPEG file");
    const auto options = std::make_shared<ThumbnailOptions>(*command);
    command->add_option("--at", options->position, "Position: milliseconds, 1.5s or 0:01.5")
        ->capture_default_str();
    command->add_option("--width", options->width, "Width in pixels; alone it keeps the aspect");
    command->add_option("--height", options->height, "Height in pixels; alone it keeps the aspect");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { thumbnail(console, *options); }; });
}
