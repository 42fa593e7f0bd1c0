#include "Commands.hpp"
#include "RequestRun.hpp"
#include "Run.hpp"

#include <nlohmann/json.hpp>

#include <memory>

using namespace corvanta;

namespace {

struct ConcatOptions {
    std::string output;
    std::vector<std::string> inputs;
};

void canConcat(Console& console, const std::vector<std::string>& inputs) {
    const bool answer = runInterruptible(CorvantaSdkVideo->canConcat(inputFiles(inputs)));
    if (console.json()) {
        console.print(nlohmann::ordered_json{{"canConcat", answer}});
    } else {
        console.print("{}\n", answer ? "yes" : "no");
    }
}

} // namespace

void addCanConcatCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("can-concat", "Tell whether videos can be joined by stream copy");
    const auto inputs = std::make_shared<std::vector<std::string>>();
    command->add_option("FILE", *inputs, "Video files")->required();
    command->callback(
        [&chosen, inputs] { chosen = [inputs](Console& console) { canConcat(console, *inputs); }; });
}

void addConcatCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("concat", "Join like videos by stream copy");
    const auto options = std::make_shared<ConcatOptions>();
    command->add_option("OUT", options->output, "Where to write it, without extension")->required();
    command->add_option("FILE", options->inputs, "Video files, in order")->required();
    command->callback([&chosen, options] {
        chosen = [options](Console& console) {
            const auto builder =
                CorvantaSdkVideo->ConcatBuilder(inputFiles(options->inputs), outputLocation(options->output));
            runRequest(console, builder.build());
        };
    });
}
