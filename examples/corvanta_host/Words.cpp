#include "Words.hpp"

#include "Failures.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <limits>
#include <numeric>
#include <string_view>
#include <utility>

namespace {

std::vector<std::string> namesOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : commandsBelow(app)) {
        names.push_back(command->get_name());
    }
    return names;
}

const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
    const auto commands = commandsBelow(app);
    const auto found = std::ranges::find(commands, name, &CLI::App::get_name);
    return found == commands.end() ? nullptr : *found;
}

// How many letters have to be added, left out or changed.
std::size_t editDistance(const std::string& from, const std::string& to) {
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t changed = diagonal + (from[i] == to[j] ? 0 : 1);
            diagonal = std::exchange(row[j + 1], std::min({changed, row[j] + 1, row[j + 1] + 1}));
        }
    }
    return row.back();
}

// What people say for what is called otherwise.
constexpr std::array<std::pair<std::string_view, std::string_view>, 6> synonyms{{{"h265", "hevc"},
                                                                                 {"h.265", "hevc"},
                                                                                 {"x265", "hevc"},
                                                                                 {"h.264", "h264"},
                                                                                 {"avc", "h264"},
                                                                                 {"x264", "h264"}}};

// ": do you mean ...?", or nothing if no name is near.
std::string nearestOf(const std::vector<std::string>& names, const std::string& word) {
    std::string meant = word;
    for (const auto& [said, name] : synonyms) {
        meant = word == said ? name : meant;
    }
    const auto nearest = std::ranges::min_element(
        names, {}, [&meant](const std::string& name) { return editDistance(meant, name); });
    const bool isNear =
        nearest != names.end() && editDistance(meant, *nearest) <= std::max<std::size_t>(2, meant.size() / 3);
    return isNear ? ": do you mean \"" + *nearest + "\"?" : "";
}

bool isWord(const std::string& text) { return !text.starts_with('-'); }

void requireCommand(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> names = namesOf(app);
    if (std::ranges::find(names, word) == names.end()) {
        const std::string nearest = nearestOf(names, word);
        throw UsageError("there is no command \"" + word + '"' +
                         (nearest.empty() ? "; --help lists them" : nearest));
    }
}

std::vector<std::string> longOptionsOf(const CLI::App& command) {
    std::vector<std::string> options;
    for (const CLI::App* app = &command; app != nullptr; app = app->get_parent()) {
        for (const CLI::Option* option : app->get_options()) {
            for (const std::string& name : option->get_lnames()) {
                options.push_back("--" + name);
            }
        }
    }
    return options;
}

} // namespace

std::vector<const CLI::App*> commandsBelow(const CLI::App& app) {
    return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<std::string> reversedWords(const CLI::App& app, std::vector<std::string> words) {
    const auto command = std::ranges::find_if(words, isWord);
    if (command != words.end()) {
        requireCommand(app, *command);
        const auto next = std::find_if(std::next(command), words.end(), isWord);
        const CLI::App& chosen = *commandNamed(app, *command);
        if (*command == "help") {
            if (next == words.end()) {
                words = {"--help"};
            } else {
                requireCommand(app, *next);
                words = {*next, "--help"};
            }
        } else if (!namesOf(chosen).empty() && next != words.end()) {
            requireCommand(chosen, *next);
        }
    }
    std::ranges::reverse(words);
    return words;
}

const CLI::App& commandOf(const CLI::App& app, const std::vector<std::string>& words) {
    const CLI::App* command = &app;
    for (const std::string& word : words) {
        const CLI::App* below = commandNamed(*command, word);
        command = below != nullptr ? below : command;
    }
    return *command;
}

std::string hintFor(const CLI::App& app, const std::vector<std::string>& words) {
    const std::vector<std::string> options = longOptionsOf(commandOf(app, words));
    for (const std::string& word : words) {
        const std::string name = word.substr(0, word.find('='));
        if (name == "--") {
            break;
        }
        if (name.starts_with("--") && std::ranges::find(options, name) == options.end()) {
            const std::string nearest = nearestOf(options, name);
            return nearest.empty() ? "; --help tells more" : nearest;
        }
    }
    return "; --help tells more";
}

CLI::Validator oneOf(const std::vector<std::string>& names) {
    std::string listed;
    for (const std::string& name : names) {
        listed += (listed.empty() ? "" : ",") + name;
    }
    return {[names, listed](const std::string& word) {
                const bool isOne = std::ranges::find(names, word) != names.end();
                return isOne ? "" : '"' + word + "\" is none of " + listed + nearestOf(names, word);
            },
            '{' + listed + '}'};
}

std::vector<std::string> wordsFor(const CLI::Option& option) {
    const std::string type = option.get_type_name();
    const std::size_t begin = type.find('{');
    const std::size_t end = type.find('}');
    if (begin == std::string::npos || end == std::string::npos) {
        return {};
    }
    return CLI::detail::split(type.substr(begin + 1, end - begin - 1), ',');
}
