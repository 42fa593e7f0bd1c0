#include "Commands.hpp"
#include "Failures.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"
#include "Values.hpp"

#include <CorvantaSdkVideo/Editor/CorvantaSdkVideoEditorImplementation.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <string>

using namespace corvanta;

namespace {

struct EditOptions {
    explicit EditOptions(CLI::App& command) : arguments(command, false) {}

    FileArguments arguments;
    std::string start;
    std::string end;
    std::int64_t rotationDegrees = 0;
    float volume = 1;
    CorvantaSdkVideoCut cut = CorvantaSdkVideoCut::copied;
};

const std::map<std::string, CorvantaSdkVideoCut> cuts{{"copied", CorvantaSdkVideoCut::copied},
                                                      {"exact", CorvantaSdkVideoCut::exact},
                                                      {"automatic", CorvantaSdkVideoCut::automatic}};

void edit(Console& console, const EditOptions& options) {
    const double start = secondsFrom("--start", options.start, 1);
    const double end = secondsFrom("--end", options.end, 1);
    if (options.rotationDegrees % 90 != 0 || std::abs(options.rotationDegrees) >= 360) {
        throw UsageError(
            fmt::format("--rotate takes quarter turns, 0, 90, 180 or 270, not {}", options.rotationDegrees));
    }
    if (!(options.volume >= 0) || !std::isfinite(options.volume)) {
        throw UsageError(fmt::format("--volume takes a factor from 0 up, not {}", options.volume));
    }
    const Files files = options.arguments.files();
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, "mp4");
    UnfinishedOutput unfinished(output.path);
    const Progress progress(console, "edit", std::llround(std::clamp(end - start, 0.0, 1e9) * 1000));
    CorvantaSdkVideoEditorImplementation editor;
    runInterruptible(editor.edit({inputs.front().url(), URL::fromFilePath(output.path), start, end,
                                  options.rotationDegrees, options.volume, options.cut}));
    unfinished.keep();
    console.printPath(output.path, {});
}

} // namespace

void addEditCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("edit", "Trim, turn and set the volume, without encoding more of the picture than --cut asks for");
    const auto options = std::make_shared<EditOptions>(*command);
    command->add_option("--start", options->start, "Start of the kept range: seconds, or 0:01.5")->required();
    command->add_option("--end", options->end, "End of the kept range")->required();
    command
        ->add_option("--rotate", options->rotationDegrees,
                     "Turn to record, in quarters: 0, 90, 180 or 270 degrees clockwise")
        ->capture_default_str();
    command->add_option("--volume", options->volume, "Factor for the sound, 0 for silence")
        ->capture_default_str();
    command
        ->add_option("--cut", options->cut,
                     "copied: the picture begins at the next key picture; exact: at the very start; automatic: exact "
                     "where copying would lose pictures")
        ->transform(CLI::CheckedTransformer(cuts))
        ->default_str("copied");
    command->callback(
        [&chosen, options] { chosen = [options](Console& console) { edit(console, *options); }; });
}
