#include "Words.hpp"

#include "Failures.hpp"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <limits>
#include <numeric>
#include <utility>

namespace {

std::vector<std::string> namesOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const CLI::App* command : app.get_subcommands([](const CLI::App*) { return true; })) {
        names.push_back(command->get_name());
    }
    return names;
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

void requireCommand(const CLI::App& app, const std::string& word) {
    const std::vector<std::string> names = namesOf(app);
    if (std::ranges::find(names, word) != names.end()) {
        return;
    }
    const auto nearest = std::ranges::min_element(
        names, {}, [&word](const std::string& name) { return editDistance(word, name); });
    const bool isNear = editDistance(word, *nearest) <= std::max<std::size_t>(2, word.size() / 3);
    throw UsageError("there is no command \"" + word + "\"" +
                     (isNear ? ": do you mean \"" + *nearest + "\"?" : "; --help lists them"));
}

} // namespace

std::vector<std::string> reversedWords(const CLI::App& app, std::vector<std::string> words) {
    const auto command =
        std::ranges::find_if(words, [](const std::string& word) { return !word.starts_with('-'); });
    if (command != words.end()) {
        requireCommand(app, *command);
        if (*command == "help") {
            if (std::next(command) == words.end()) {
                words = {"--help"};
            } else {
                requireCommand(app, *std::next(command));
                words = {*std::next(command), "--help"};
            }
        }
    }
    std::ranges::reverse(words);
    return words;
}
