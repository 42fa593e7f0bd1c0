#include "Commands.hpp"
#include "Failures.hpp"
#include "Words.hpp"

#include <nlohmann/json.hpp>

#include <cstddef>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>

using Json = nlohmann::ordered_json;

namespace {

struct Job {
    std::vector<std::string> words;
    Command command;
};

std::string textOf(const std::string& path) {
    if (path == "-") {
        return {std::istreambuf_iterator(std::cin), {}};
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        throw Refusal("notFoundJobs", path + " can't be read");
    }
    return {std::istreambuf_iterator(file), {}};
}

Job jobOf(const Json& entry, std::size_t number) {
    const std::string place = "job " + std::to_string(number) + ": ";
    Job job;
    for (const Json& word : entry.is_array() ? entry : Json::array({nullptr})) {
        if (!word.is_string()) {
            throw UsageError(place +
                             "not a list of a command's words, such as [\"merge\", \"a.mp4\", \"b.mp4\", "
                             "\"-o\", \"film\"]");
        }
        job.words.push_back(word);
    }
    CLI::App app("", "corvanta_host");
    app.require_subcommand(1);
    addCommands(app, job.command);
    try {
        app.parse(reversedWords(app, job.words));
    } catch (const CLI::ParseError& error) {
        const std::string reason = error.get_exit_code() == 0 ? "help is for people" : error.what();
        throw UsageError(place + reason + (reason.ends_with('?') ? "" : hintFor(app, job.words)));
    } catch (const UsageError& error) {
        throw UsageError(place + error.what());
    }
    const std::string name = app.get_subcommands().front()->get_name();
    if (name == "jobs" || name == "watch" || !job.command) {
        throw UsageError(place + name + " can't be one of several");
    }
    return job;
}

// What can't be followed is told before anything runs.
std::vector<Job> jobsFrom(const std::string& path) {
    const Json listed = Json::parse(textOf(path), nullptr, false);
    if (!listed.is_array()) {
        throw UsageError((path == "-" ? "standard input" : path) + " holds no JSON list of jobs");
    }
    std::vector<Job> jobs;
    for (const Json& entry : listed) {
        jobs.push_back(jobOf(entry, jobs.size() + 1));
    }
    return jobs;
}

int statusOfJob(Console& console, const Job& job) {
    try {
        job.command(console);
        return 0;
    } catch (const std::exception& error) {
        if (dynamic_cast<const Told*>(&error) == nullptr) {
            console.fail(error);
        }
        return statusOf(error);
    }
}

void runJobs(Console& console, const std::string& path) {
    const std::vector<Job> jobs = jobsFrom(path);
    Json document = Json::array();
    int status = 0;
    for (const Job& job : jobs) {
        console.note(
            fmt::format("job {} of {}: {}", document.size() + 1, jobs.size(), fmt::join(job.words, " ")));
        console.setRequest("");
        console.setFile("");
        console.gatherResults();
        const int own = statusOfJob(console, job);
        document.push_back({{"words", job.words}, {"status", own}, {"results", console.takeResults()}});
        status = own == 0 ? status : status == 0 || status == own ? own : exitStatus::failed;
        if (own > exitStatus::signalled) {
            status = own;
            break;
        }
    }
    console.result(document, "");
    if (status != 0) {
        throw Told(status);
    }
}

} // namespace

void addJobsCommand(CLI::App& app, Command& chosen) {
    auto* command = app.add_subcommand("jobs", "Run commands from a JSON list, one after the other");
    const auto path = std::make_shared<std::string>();
    command
        ->add_option(
            "JOBS", *path,
            "A file with a list of jobs, each a list of words as they stand on the command line, such "
            "as [[\"clean\", \"a.mp4\", \"-o\", \"b\"]]; \"-\" reads standard input. Where one fails, "
            "the next ones are run all the same; none is, if one can't be followed")
        ->required()
        ->type_name("JOBS");
    command->callback([&chosen, path] { chosen = [path](Console& console) { runJobs(console, *path); }; });
}
