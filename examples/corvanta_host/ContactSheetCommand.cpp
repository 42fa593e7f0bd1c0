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

using namespace corvanta;

namespace {

struct ContactSheetOptions {
    explicit ContactSheetOptions(CLI::App& command) : arguments(command, false) {}

    FileArguments arguments;
    std::int64_t columns = 4;
    std::int64_t rows = 3;
    std::int64_t width = 320;
};

void contactSheet(Console& console, const ContactSheetOptions& options, const Files& files) {
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, "jpg");
    UnfinishedOutput unfinished(output.path);
    {
        const Progress progress(console, "contact-sheet");
        runInterruptible(CorvantaSdkVideo->contactSheet(inputs.front(), output.location, options.columns,
                                                        options.rows, options.width,
                                                        progress.listenerToPictures()));
    }
    unfinished.keep();
    console.resultAt(output.path, {});
}

} // namespace

void addContactSheetCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("contact-sheet", "Write a JPEG file of frames all through a video");
    const auto options = std::make_shared<ContactSheetOptions>(*command);
    command->add_option("--columns", options->columns, "Frames beside each other")->capture_default_str();
    command->add_option("--rows", options->rows, "Frames below each other")->capture_default_str();
    command->add_option("--width", options->width, "Width of one frame in pixels")->capture_default_str();
    command->callback([&chosen, options] {
        chosen = [options](Console& console) {
            runEachFile(console, options->arguments,
                        [&](const Files& files) { contactSheet(console, *options, files); });
        };
    });
}
