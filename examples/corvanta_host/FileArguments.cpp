#include "FileArguments.hpp"

#include "Failures.hpp"

#include <filesystem>
#include <map>
#include <utility>

namespace fs = std::filesystem;

OverwritingOptions::OverwritingOptions(CLI::App& command) {
    auto* force = command.add_flag("--force", flags_->force, "Write over a file that is there already");
    command.add_flag("--no-clobber", flags_->noClobber, "Refuse to, without asking on the terminal as else")
        ->excludes(force);
}

Overwriting OverwritingOptions::chosen() const {
    return flags_->force ? Overwriting::always : flags_->noClobber ? Overwriting::never : Overwriting::asked;
}

bool isFolder(const std::string& path) {
    std::error_code absent;
    return path.ends_with('/') || fs::is_directory(path, absent);
}

FileArguments::FileArguments(CLI::App& command, bool makesOneOfAll, Out place)
    : command_(command.get_name()), place_(place), overwriting_(command) {
    command
        .add_option("FILE", words_->files,
                    makesOneOfAll ? "Video files, in order"
                                  : "Video file; several are done one by one if OUT is a folder")
        ->required()
        ->type_name("FILE");
    command
        .add_option("-o,--output", words_->output,
                    "Where to write (OUT): a name, with or without the extension that is written, or a "
                    "folder; without this option the " +
                        std::string(place == Out::first ? "first" : "last") + " FILE is OUT")
        ->type_name("OUT");
}

Files FileArguments::files() const {
    Files files{words_->files, words_->output, overwriting_.chosen()};
    if (files.output.empty()) {
        if (files.inputs.size() < 2) {
            throw UsageError(command_ + " needs to know where to write: " + command_ + " FILE -o OUT");
        }
        const auto out = place_ == Out::first ? files.inputs.begin() : std::prev(files.inputs.end());
        files.output = *out;
        files.inputs.erase(out);
        std::error_code absent;
        if (fs::exists(files.output, absent) && !isFolder(files.output)) {
            throw UsageError(files.output + " is there already and may be meant as a file to read: name the "
                                            "output with -o");
        }
    }
    return files;
}

std::vector<Files> FileArguments::each() const {
    const Files all = files();
    if (all.inputs.size() == 1) {
        return {all};
    }
    if (!isFolder(all.output)) {
        throw UsageError(command_ + " reads one file, and " + std::to_string(all.inputs.size()) +
                         " are given: to do each of them name a folder, " + command_ +
                         " FILE FILE -o FOLDER/");
    }
    std::vector<Files> jobs;
    std::map<std::string, std::string> inputsByName;
    for (const std::string& input : all.inputs) {
        const auto [same, isNew] = inputsByName.emplace(fs::path(input).stem(), input);
        if (!isNew) {
            throw UsageError(same->second + " and " + input + " would be written to the same place");
        }
        jobs.push_back({{input}, all.output, all.overwriting});
    }
    return jobs;
}
