#include "FileArguments.hpp"

#include "Failures.hpp"

#include <filesystem>
#include <utility>

FileArguments::FileArguments(CLI::App& command, bool severalFiles, Out place)
    : command_(command.get_name()), severalFiles_(severalFiles), place_(place) {
    command.add_option("FILE", words_->files, severalFiles ? "Video files, in order" : "Video file")
        ->required();
    command.add_option("-o,--output", words_->output,
                       "Where to write (OUT): a name, with or without the extension that is written, or a "
                       "folder; without this option the " +
                           std::string(place == Out::first ? "first" : "last") + " FILE is OUT");
    command.add_flag("--force", words_->force, "Write over a file that is there already");
}

Files FileArguments::files() const {
    Files files{words_->files, words_->output, words_->force};
    if (files.output.empty()) {
        if (files.inputs.size() < 2) {
            throw UsageError(command_ + " needs to know where to write: " + command_ + " FILE -o OUT");
        }
        const auto out = place_ == Out::first ? files.inputs.begin() : std::prev(files.inputs.end());
        files.output = *out;
        files.inputs.erase(out);
        std::error_code absent;
        if (std::filesystem::exists(files.output, absent) &&
            !std::filesystem::is_directory(files.output, absent)) {
            throw UsageError(files.output + " is there already and may be meant as a file to read: name the "
                                            "output with -o");
        }
    }
    if (!severalFiles_ && files.inputs.size() != 1) {
        throw UsageError(command_ + " reads one file, and " + std::to_string(files.inputs.size()) +
                         " are given");
    }
    return files;
}
