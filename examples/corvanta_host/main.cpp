#include "Commands.hpp"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <cstdlib>
#include <exception>
#include <memory>

using namespace corvanta;

int main(int argumentCount, char** arguments) {
    CLI::App app("Inspects, joins and edits local video files with the CorvantaSdkVideo module.",
                 "corvanta_host");
    app.require_subcommand(1);
    app.fallthrough();

    Console::Options options;
    bool loggedOut = false;
    app.add_flag("--json", options.json, "Print results as JSON");
    app.add_flag("--verbose", options.verbose, "Show the module's log and ffmpeg's on standard error");
    app.add_flag("--logged-out", loggedOut, "Use the module with nobody logged in");

    Command command;
    for (const auto add : {addInfoCommand, addThumbnailCommand, addCanConcatCommand, addConcatCommand,
                           addMergeCommand, addEncodeCommand, addEditCommand, addCleanCommand,
                           addTracksCommand, addRequestsCommand, addWatchCommand, addProcessCommand}) {
        add(app, command);
    }
    try {
        app.parse(argumentCount, arguments);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }

    // Files come from anywhere.
    FFmpegKitConfig::setRunLimits(recommendedRunLimits());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(!loggedOut));
    Console console(options);
    try {
        command(console);
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        console.fail(error);
        return EXIT_FAILURE;
    }
}
