#include "Commands.hpp"
#include "Failures.hpp"
#include "Words.hpp"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <cstdlib>
#include <exception>
#include <memory>
#include <stdexcept>
#include <string>

using namespace corvanta;

namespace {

constexpr const char* statuses = R"(Exit status:
  0    done
  1    failed or refused, or the answer is "no"
  2    the command line can't be followed
  130  cancelled by Ctrl-C (128 and the signal's number)
Files are read where they are and never changed; a file that is there is written over with --force alone.)";

int follow(const Command& command, const Console::Options& options, bool loggedOut) {
    // Files come from anywhere.
    FFmpegKitConfig::setRunLimits(recommendedRunLimits());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(!loggedOut));
    Console console(options);
    try {
        command(console);
        return EXIT_SUCCESS;
    } catch (const Cancelled& cancelled) {
        console.fail(cancelled);
        return cancelled.status();
    } catch (const SomeFailed&) {
        return exitStatus::failed;
    } catch (const UsageError& error) {
        console.fail(error);
        return exitStatus::wrongUsage;
    } catch (const std::invalid_argument& error) {
        console.fail(UsageError(error.what()));
        return exitStatus::wrongUsage;
    } catch (const std::exception& error) {
        console.fail(error);
        return exitStatus::failed;
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    CLI::App app("Inspects, joins and edits local video files with the CorvantaSdkVideo module.",
                 "corvanta_host");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(statuses);

    Console::Options options;
    bool loggedOut = false;
    app.add_flag("--json", options.json, "Print results and errors as JSON");
    app.add_flag("--verbose", options.verbose, "Show the module's log and ffmpeg's on standard error");
    app.add_flag("--logged-out", loggedOut, "Use the module with nobody logged in");
    app.set_version_flag("--version", "corvanta_host " CORVANTA_VERSION);

    Command command;
    for (const auto add :
         {addInfoCommand, addThumbnailCommand, addContactSheetCommand, addJoinCommand, addCanConcatCommand,
          addConcatCommand, addMergeCommand, addEncodeCommand, addEditCommand, addCleanCommand,
          addTracksCommand, addRequestsCommand, addWatchCommand, addProcessCommand}) {
        add(app, command);
    }
    app.add_subcommand("help", "Show this text, or that of a command");
    try {
        auto words = reversedWords(app, {arguments + 1, arguments + argumentCount});
        app.parse(words);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        options.verbose = false;
        return follow(
            [&error](Console&) { throw UsageError(std::string(error.what()) + "; --help tells more"); },
            options, loggedOut);
    } catch (const UsageError& error) {
        return follow([&error](Console&) { throw error; }, options, loggedOut);
    }
    return follow(command, options, loggedOut);
}
