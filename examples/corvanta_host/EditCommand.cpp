#include "Commands.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <memory>

using namespace corvanta;

namespace {

struct EditOptions {
    std::string output;
    std::string input;
    double startSeconds = 0;
    double endSeconds = 0;
    std::int64_t rotationDegrees = 0;
    float volume = 1;
};

void edit(Console& console, const EditOptions& options) {
    const auto output = outputLocation(options.output).url(FileExtension(FileExtension::mp4).rawValue());
    if (!output) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::unableToProcessOutput);
    }
    const double seconds = options.endSeconds - options.startSeconds;
    const Progress progress(console, "Editing",
                            static_cast<std::int64_t>(std::clamp(seconds, 0.0, 1e9) * 1000));
    CorvantaSdkVideoEditorImplementation editor;
    const auto result = runInterruptible(
        editor.edit({inputFiles({options.input}).front().url(), *output, options.startSeconds,
                     options.endSeconds, options.rotationDegrees, options.volume}));
    if (console.json()) {
        console.print(nlohmann::ordered_json{{"editedVideoURL", result.editedVideoURL->absoluteString()}});
    } else {
        console.print("{}\n", result.editedVideoURL->path());
    }
}

} // namespace

void addEditCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("edit", "Trim, turn and set the volume, without encoding the picture");
    const auto options = std::make_shared<EditOptions>();
    command->add_option("OUT", options->output, "Where to write the mp4 file, without extension")->required();
    command->add_option("FILE", options->input, "Video file")->required();
    command->add_option("--start", options->startSeconds, "Start of the kept range in seconds")->required();
    command->add_option("--end", options->endSeconds, "End of the kept range in seconds")->required();
    command->add_option("--rotate", options->rotationDegrees, "Turn to record, in degrees clockwise")
        ->capture_default_str();
    command->add_option("--volume", options->volume, "Factor for the sound")->capture_default_str();
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { edit(console, *options); }; });
}
