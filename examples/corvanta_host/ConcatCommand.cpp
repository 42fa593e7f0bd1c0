#include "Commands.hpp"
#include "Failures.hpp"
#include "FileArguments.hpp"
#include "Inputs.hpp"
#include "Output.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <memory>

using namespace corvanta;

namespace {

void canConcat(Console& console, const std::vector<std::string>& inputs) {
    const auto obstacle = runInterruptible(CorvantaSdkVideo->obstacleToConcat(inputFiles(inputs)));
    if (!obstacle) {
        console.result({{"canConcat", true}}, "yes\n");
        return;
    }
    const auto [name, details] = describe(*obstacle);
    console.result({{"canConcat", false}, {"obstacle", {{"name", name}, {"details", details}}}}, "no\n");
    console.note("corvanta_host: " + lineOf(*obstacle));
    throw Told(exitStatus::failed);
}

void concat(Console& console, const FileArguments& arguments) {
    const Files files = arguments.files();
    const auto inputs = inputFiles(files.inputs);
    const Output output = outputFor(files, inputs.front().fileExtension());
    requireReadable(inputs);
    const auto builder = CorvantaSdkVideo->ConcatBuilder(inputs, output.location);
    runRequest(console, builder.build(), output.path);
}

} // namespace

void addCanConcatCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand(
        "can-concat",
        "Tell whether videos can be joined by stream copy: yes, or no (exit status 1) and why not");
    const auto inputs = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *inputs, "Video files")->required()->type_name("FILE");
    command->callback(
        [&chosen, inputs] { chosen = [inputs](Console& console) { canConcat(console, *inputs); }; });
}

void addConcatCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("concat", "Join like videos by stream copy");
    const FileArguments arguments(*command, true);
    command->callback(
        [&chosen, arguments] { chosen = [arguments](Console& console) { concat(console, arguments); }; });
}
