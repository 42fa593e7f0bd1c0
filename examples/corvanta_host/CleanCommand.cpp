#include "Commands.hpp"
#include "Failures.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"
#include "SeveralJobs.hpp"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <memory>

using namespace corvanta;

namespace {

// The module doesn't report a failure to write the video.
void requireWritten(const URL& cleaned) {
    try {
        runInterruptible(CorvantaSdkVideo->getVideosInformation({CorvantaSdkVideoFile(cleaned)}));
    } catch (const CorvantaSdkVideoError&) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::unableToProcessOutput,
                                    "the cleaned video could not be written");
    }
}

struct CleanOptions {
    explicit CleanOptions(CLI::App& command) : arguments(command, false) {}

    FileArguments arguments;
    CorvantaSdkVideoNoiseCancellationOptions engine;
};

void cleanFile(Console& console, const CleanOptions& options, const Files& files) {
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, inputs.front().fileExtension());
    requireReadable(inputs);
    UnfinishedOutput unfinished(output.path);
    {
        const Progress progress(console, "clean");
        auto engine = options.engine;
        engine.onProgress = progress.listener();
        runInterruptible(
            CorvantaSdkVideo->engine()->clearNoiseForFile(inputs.front(), output.location, engine));
    }
    requireWritten(URL::fromFilePath(output.path));
    unfinished.keep();
    console.resultAt(output.path, {});
}

void clean(Console& console, const CleanOptions& options) {
    const double strength = options.engine.strength.value_or(1);
    if (!(strength >= 0 && strength <= 1)) {
        throw UsageError(fmt::format("--strength takes a number from 0 to 1, not {}", strength));
    }
    runEachFile(console, options.arguments, [&](const Files& files) { cleanFile(console, options, files); });
}

} // namespace

void addCleanCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean", "Remove background noise from a video's sound");
    const auto options = std::make_shared<CleanOptions>(*command);
    command->add_option("--strength", options->engine.strength,
                        "How much of the noise goes, from 0 (none) to 1 (all, as without it)");
    command->add_flag("--compensated", options->engine.compensated, "Take out the model's delay of 31 ms");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { clean(console, *options); }; });
}
