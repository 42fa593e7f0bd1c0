#include "Commands.hpp"
#include "Failures.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

using namespace corvanta;

namespace {

// The module doesn't report a failure to write the video.
void requireWritten(const URL& cleaned) {
    try {
        runInterruptible(CorvantaSdkVideo->getVideosInformation({CorvantaSdkVideoFile(cleaned)}));
    } catch (const CorvantaSdkVideoError&) {
        throw Refusal("unableToProcessOutput", "the cleaned video could not be written");
    }
}

void clean(Console& console, const FileArguments& arguments) {
    const Files files = arguments.files();
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, inputs.front().fileExtension());
    requireReadable(inputs);
    UnfinishedOutput unfinished(output.path);
    {
        const Progress progress(console, "clean", totalMillis(urlsOf(inputs)));
        runInterruptible(CorvantaSdkVideo->engine()->clearNoiseForFile(inputs.front(), output.location));
    }
    requireWritten(URL::fromFilePath(output.path));
    unfinished.keep();
    console.printPath(output.path, {});
}

} // namespace

void addCleanCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("clean", "Remove background noise from a video's sound");
    const FileArguments arguments(*command, false);
    command->callback(
        [&chosen, arguments] { chosen = [arguments](Console& console) { clean(console, arguments); }; });
}
