#include "Completion.hpp"

#include "Inputs.hpp"
#include "MediaNames.hpp"
#include "ProgramOutput.hpp"
#include "Run.hpp"
#include "Words.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

using namespace corvanta;

namespace {

/// The line up to the word that is completed, read as CLI11 would.
struct Line {
    const CLI::App* command = nullptr;
    std::string current;
    /// The option whose value the word is.
    const CLI::Option* valued = nullptr;
    /// The words that are no options, commands or values.
    std::vector<std::string> files;
    std::vector<const CLI::Option*> given;
    /// Behind "--" nothing is an option.
    bool isEnded = false;
};

const CLI::Option* optionNamed(const CLI::App& command, const std::string& word) {
    for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            if (option->nonpositional() && option->check_name(word)) {
                return option;
            }
        }
    }
    return nullptr;
}

const CLI::App* commandBelow(const CLI::App& app, const std::string& name) {
    const auto commands = commandsBelow(app);
    const auto found = std::ranges::find(commands, name, &CLI::App::get_name);
    return found == commands.end() ? nullptr : *found;
}

void readWord(Line& line, const std::string& word) {
    if (line.valued != nullptr) {
        // bash makes words of their own of "=" and what follows.
        line.valued = word == "=" ? line.valued : nullptr;
    } else if (!line.isEnded && word == "--") {
        line.isEnded = true;
    } else if (!line.isEnded && word.starts_with('-')) {
        const CLI::Option* option = optionNamed(*line.command, word.substr(0, word.find('=')));
        const bool takesNext =
            option != nullptr && option->get_items_expected_max() > 0 && word.find('=') == std::string::npos;
        line.valued = takesNext ? option : nullptr;
        if (option != nullptr) {
            line.given.push_back(option);
        }
    } else if (const CLI::App* below = line.files.empty() ? commandBelow(*line.command, word) : nullptr) {
        line.command = below;
    } else {
        line.files.push_back(word);
    }
}

Line readLine(const CLI::App& app, const std::vector<std::string>& words) {
    Line line;
    line.command = &app;
    for (std::size_t index = 0; index + 1 < words.size(); ++index) {
        readWord(line, words[index]);
    }
    line.current = words.empty() ? "" : words.back();
    if (line.valued != nullptr && line.current == "=") {
        line.current.clear();
    }
    return line;
}

/// Candidates as they are printed.
class Candidates {
  public:
    explicit Candidates(std::string current) : current_(std::move(current)) {}

    void add(const std::string& word, std::string about = "") {
        if (word.starts_with(current_)) {
            std::ranges::replace(about, '\n', ' ');
            text_ += word + '\t' + about + '\n';
        }
    }

    void addFiles(const std::vector<std::string>& extensions = {}) {
        text_ += ":files";
        for (const std::string& extension : extensions) {
            text_ += ' ' + extension;
        }
        text_ += '\n';
    }

    const std::string& current() const { return current_; }
    const std::string& text() const { return text_; }

  private:
    std::string current_;
    std::string text_;
};

void addRequests(Candidates& candidates, bool canBeRun) {
    using Status = CorvantaSdkVideoRequest::Status;
    for (const Status status :
         {Status::idle, Status::error, Status::cancelled, Status::processing, Status::complete}) {
        if (canBeRun && (status == Status::processing || status == Status::complete)) {
            continue;
        }
        for (const auto& request : CorvantaSdkVideo->getRequests(status)) {
            const auto output = request->outputPath();
            candidates.add(uuidString(request->id), fmt::format("{} {} {}", name(request->type), name(status),
                                                                output ? output->path() : ""));
        }
    }
}

std::vector<CorvantaSdkVideoInformation> informationOfFiles(const std::vector<std::string>& words) {
    std::vector<std::string> files;
    // An OUT among them is not there yet.
    std::ranges::copy_if(words, std::back_inserter(files), [](const std::string& word) {
        std::error_code absent;
        return std::filesystem::is_regular_file(word, absent);
    });
    return requireReadable(inputFiles(files));
}

// "1:0" behind the entries of the track that are there already; of one file the stream alone.
void addStreams(Candidates& candidates, const std::vector<std::string>& words, bool isVideo,
                bool isOfOneFile) {
    const std::size_t comma = candidates.current().rfind(',');
    const bool goesOn = comma != std::string::npos && !isOfOneFile;
    const std::string before = goesOn ? candidates.current().substr(0, comma + 1) : "";
    const auto files = informationOfFiles(words);
    for (std::size_t number = 0; number < files.size(); ++number) {
        const std::string file = isOfOneFile ? "" : std::to_string(number) + ':';
        const std::string path = std::filesystem::path(files[number].url.path()).filename();
        for (const auto& track : files[number].videos) {
            if (isVideo) {
                candidates.add(before + file + std::to_string(track.index),
                               fmt::format("{} {}x{} of {}", track.codec, track.width, track.height, path));
            }
        }
        for (const auto& track : files[number].audios) {
            if (!isVideo) {
                candidates.add(before + file + std::to_string(track.index),
                               fmt::format("{} {} of {}", track.codec, track.channelLayout, path));
            }
        }
    }
}

void addEncoders(Candidates& candidates) {
    const char* chosen = std::getenv("CORVANTA_FFMPEG");
    std::istringstream lines(
        outputOf(chosen != nullptr && *chosen != '\0' ? chosen : "ffmpeg", {"-hide_banner", "-encoders"})
            .text);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string flags;
        std::string name;
        std::string about;
        words >> flags >> name >> std::ws;
        std::getline(words, about);
        const bool isMeant = std::ranges::any_of(
            std::initializer_list<const char*>{"libx264", "libx265", "libsvtav1", "libaom-av1", "h264_nvenc",
                                               "h264_vaapi", "h264_qsv", "hevc_nvenc", "hevc_vaapi",
                                               "hevc_qsv", "av1_nvenc", "av1_vaapi", "av1_qsv", "mpeg4"},
            [&name](const char* known) { return name == known; });
        if (isMeant) {
            candidates.add(name, about);
        }
    }
}

void addValues(Candidates& candidates, const Line& line, const CLI::Option& option) {
    const std::string type = option.get_type_name();
    if (type == "FILE") {
        candidates.addFiles(mediaExtensions());
    } else if (type == "OUT") {
        candidates.addFiles();
    } else if (type == "JOBS") {
        candidates.addFiles({"json"});
    } else if (type == "ID") {
        addRequests(candidates, line.command->get_name() == "process");
    } else if (type == "ENCODER") {
        addEncoders(candidates);
    } else if (type == "VIDEO_TRACK" || type == "AUDIO_TRACK") {
        addStreams(candidates, line.files, type == "VIDEO_TRACK", false);
    } else if (type == "VIDEO_STREAM" || type == "AUDIO_STREAM") {
        addStreams(candidates, line.files, type == "VIDEO_STREAM", true);
    } else {
        for (const std::string& word : wordsFor(option)) {
            candidates.add(word);
        }
    }
}

void addOptions(Candidates& candidates, const Line& line) {
    for (const CLI::App* app = line.command; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            const bool isRepeated = option->get_items_expected_max() > 1 ||
                                    option->get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
            const bool isGiven = std::ranges::find(line.given, option) != line.given.end();
            for (const std::string& name : option->get_lnames()) {
                if (isRepeated || !isGiven) {
                    candidates.add("--" + name, option->get_description());
                }
            }
        }
    }
}

void addWords(Candidates& candidates, const Line& line) {
    const bool isHelp = line.command->get_name() == "help";
    const CLI::App& above = isHelp ? *line.command->get_parent() : *line.command;
    if (line.files.empty()) {
        for (const CLI::App* command : commandsBelow(above)) {
            candidates.add(command->get_name(), command->get_description());
        }
    }
    for (const CLI::Option* option : line.command->get_options()) {
        if (option->get_positional() && (option->get_items_expected_max() > 1 || line.files.empty())) {
            addValues(candidates, line, *option);
        }
    }
}

} // namespace

void complete(Console& console, const CLI::App& app, const std::vector<std::string>& words) {
    const Line line = readLine(app, words);
    Candidates candidates(line.current);
    try {
        if (line.valued != nullptr) {
            addValues(candidates, line, *line.valued);
        } else if (!line.isEnded && line.current.starts_with('-')) {
            addOptions(candidates, line);
        } else {
            addWords(candidates, line);
        }
    } catch (const std::exception&) {
        // A shell in the middle of a line is no place for it.
    }
    console.result({}, candidates.text());
}
