#include "Commands.hpp"
#include "EncodingOptions.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "MediaNames.hpp"
#include "Output.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"
#include "Values.hpp"
#include "Words.hpp"

#include <nlohmann/json.hpp>

#include <cmath>
#include <filesystem>
#include <memory>
#include <optional>

using namespace corvanta;

namespace {

struct JoinOptions {
    explicit JoinOptions(CLI::App& command) : arguments(command, true), encoding(command) {}

    FileArguments arguments;
    EncodingOptions encoding;
    std::optional<double> width;
    std::optional<double> height;
    std::string rate;
    bool isDryRun = false;
};

using Inspection = CorvantaSdkVideoJoinInspection;

std::optional<std::int64_t> wholeSide(std::optional<double> side) {
    return side ? std::optional<std::int64_t>(std::llround(*side)) : std::nullopt;
}

// What the name of the output asks for, as far as it is an extension of videos.
std::optional<std::string> extensionOf(const std::string& output) {
    const std::string given = std::filesystem::path(output).extension().string();
    const std::string extension = given.empty() ? given : given.substr(1);
    return isJoinedExtension(extension) ? std::optional(extension) : std::nullopt;
}

CorvantaSdkVideoJoinOptions wishesOf(const JoinOptions& options, const Files& files) {
    requireSide("--width", options.width);
    requireSide("--height", options.height);
    CorvantaSdkVideoJoinOptions wishes{.width = wholeSide(options.width),
                                       .height = wholeSide(options.height),
                                       .encoding = options.encoding.chosen(),
                                       .fileExtension = extensionOf(files.output)};
    if (!options.rate.empty()) {
        wishes.framesRate = CorvantaSdkVideoFrameRate::fromRawValue(options.rate);
    }
    return wishes;
}

// "merged at 1280x720, 30 frames a second: the width of ..."
std::string described(const Inspection& join) {
    if (join.way == CorvantaSdkVideoJoinWay::copied) {
        return "copied: the files are alike";
    }
    const std::string size = join.width ? fmt::format(" at {}x{}, {} frames a second", *join.width,
                                                      *join.height, join.framesRate.rawValue())
                                        : "";
    return fmt::format("merged{}: {}", size, join.obstacle);
}

nlohmann::ordered_json planned(const Inspection& join, const std::string& path) {
    nlohmann::ordered_json plan{{"way", name(join.way)}, {"path", path}, {"seconds", join.seconds}};
    if (!join.obstacle.empty()) {
        plan["obstacle"] = join.obstacle;
    }
    if (join.width) {
        plan["width"] = *join.width;
        plan["height"] = *join.height;
        plan["framesRate"] = join.framesRate.rawValue();
    }
    if (join.encoding && join.encoding->pictureCodec()) {
        plan["codec"] = name(*join.encoding->pictureCodec());
    }
    return plan;
}

void join(Console& console, const JoinOptions& options) {
    const Files files = options.arguments.files();
    const auto inputs = inputFiles(files.inputs);
    requireThere(inputs);
    const auto wishes = wishesOf(options, files);
    const Inspection inspection = runInterruptible(CorvantaSdkVideo->joinInspection(inputs, wishes));
    const Output output = outputFor(files, inspection.fileExtension);
    if (options.isDryRun) {
        console.result(planned(inspection, output.path), described(inspection) + '\n' + output.path + '\n');
        return;
    }
    console.note(described(inspection));
    const auto builder = CorvantaSdkVideo->JoinBuilder(inputs, output.location);
    runRequest(console, builder.build(inspection), output.path);
}

} // namespace

void addJoinCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand(
        "join", "Make one video of several: copied where they are alike, else encoded as most of them are");
    const auto options = std::make_shared<JoinOptions>(*command);
    command->add_option("--width", options->width,
                        "Width of the picture in pixels, even, from 128 on; as most of the files have it, "
                        "unless said");
    command->add_option("--height", options->height, "Height; one side alone keeps the shape");
    command->add_option("--fps", options->rate, "Frame rate; as most of the files have it, unless said")
        ->check(oneOf({"24", "25", "30", "50", "60"}));
    command->add_flag("--dry-run", options->isDryRun,
                      "Only tell what would be done, why, and what would be written");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { join(console, *options); }; });
}
