#include "Commands.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <memory>
#include <optional>

using namespace corvanta;

namespace {

struct ThumbnailOptions {
    std::string input;
    std::string output;
    double positionMillis = 1000;
    std::optional<std::int64_t> width;
    std::optional<std::int64_t> height;
};

void thumbnail(Console& console, const ThumbnailOptions& options) {
    const Progress progress(console, "Looking for the frame", std::nullopt);
    const auto result = runInterruptible(CorvantaSdkVideo->generateThumbnail(
        inputFiles({options.input}).front(), outputLocation(options.output), options.positionMillis,
        options.width, options.height));
    if (console.json()) {
        console.print(
            nlohmann::ordered_json{{"generatedThumbnailURL", result.generatedThumbnailURL.absoluteString()}});
    } else {
        console.print("{}\n", result.generatedThumbnailURL.path());
    }
}

} // namespace

void addThumbnailCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("thumbnail", "Write one frame as a JPEG file");
    const auto options = std::make_shared<ThumbnailOptions>();
    command->add_option("FILE", options->input, "Video file")->required();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("--at", options->positionMillis, "Position in milliseconds")->capture_default_str();
    command->add_option("--width", options->width, "Width in pixels; alone it keeps the aspect");
    command->add_option("--height", options->height, "Height in pixels; alone it keeps the aspect");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { thumbnail(console, *options); }; });
}
