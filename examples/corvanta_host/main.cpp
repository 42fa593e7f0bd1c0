#include "Commands.hpp"
#include "Completion.hpp"
#include "DataFolder.hpp"
#include "Failures.hpp"
#include "Words.hpp"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>
#include <vector>

using namespace corvanta;

namespace {

constexpr const char* ends = R"(Exit status:
  0    done
  1    failed on its way, or the answer is "no"
  2    the command line can't be followed
  3    refused: it can't be done with these files or requests, and nothing was begun
  4    nobody is logged in
  130  cancelled by Ctrl-C (128 and the signal's number), or the request was by another process
Files are read where they are and never changed; a file that is there is written over with --force alone, or if the
answer on the terminal is yes. With --json each run prints one document, a failure's too; watch prints one a line.)";

int follow(const Command& command, const Console::Options& options, bool loggedOut) {
    // Files come from anywhere.
    FFmpegKitConfig::setRunLimits(recommendedRunLimits());
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(!loggedOut));
    const DataFolder folder;
    Console console(options);
    int status = EXIT_SUCCESS;
    const auto attempt = [&console, &status](const auto& step) {
        try {
            step();
        } catch (const std::exception& error) {
            status = statusOf(error);
            if (dynamic_cast<const Told*>(&error) == nullptr) {
                console.fail(error);
            }
        }
    };
    attempt([&] { command(console); });
    attempt([&] { console.finish(); });
    return status;
}

} // namespace

void addCommands(CLI::App& app, Command& chosen) {
    for (const auto add : {addInfoCommand, addThumbnailCommand, addContactSheetCommand, addJoinCommand,
                           addCanConcatCommand, addConcatCommand, addMergeCommand, addEncodeCommand,
                           addEditCommand, addCleanCommand, addTracksCommand, addRequestsCommand,
                           addWatchCommand, addProcessCommand, addJobsCommand, addDoctorCommand}) {
        add(app, chosen);
    }
}

int main(int argumentCount, char** arguments) {
    CLI::App app("Inspects, joins and edits local video files with the CorvantaSdkVideo module.",
                 "corvanta_host");
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(ends);

    Console::Options options;
    bool loggedOut = false;
    std::vector<std::string> words(arguments + 1, arguments + argumentCount);
    app.add_flag("--json", options.json, "Print the result, or the failure, as one JSON document");
    app.add_flag("--verbose", options.verbose, "Show the module's log and ffmpeg's on standard error");
    app.add_flag("--logged-out", loggedOut, "Use the module with nobody logged in");
    app.set_version_flag("--version", "corvanta_host " CORVANTA_VERSION);

    Command command;
    addCommands(app, command);
    app.add_subcommand("help", "Show this text, or that of a command");
    const auto tellUsage = [&](const std::string& reason) {
        // What CLI11 has not come to.
        options.json = std::ranges::find(words, "--json") != words.end();
        options.verbose = false;
        return follow([&reason](Console&) { throw UsageError(reason); }, options, loggedOut);
    };
    // For the shells' scripts, and no command for people.
    if (!words.empty() && words.front() == "__complete") {
        words.erase(words.begin());
        return follow([&](Console& console) { complete(console, app, words); }, options, loggedOut);
    }
    try {
        app.parse(reversedWords(app, words));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        const std::string reason = error.what();
        return tellUsage(reason.ends_with('?') ? reason : reason + hintFor(app, words));
    } catch (const UsageError& error) {
        return tellUsage(error.what());
    }
    return follow(command, options, loggedOut);
}
