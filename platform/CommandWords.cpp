#include <platform/CommandWords.hpp>

#include <platform/URL.hpp>

namespace corvanta {

namespace {

std::string argument(std::string word, bool quoted) {
    if (!quoted && word.starts_with("file:")) {
        if (const auto url = URL::parse(word); url && url->isFileURL()) {
            return url->path();
        }
    }
    return word;
}

} // namespace

std::vector<std::string> splitCommand(std::string_view command) {
    std::vector<std::string> arguments;
    std::string word;
    bool inQuotes = false;
    bool quoted = false;
    const auto endWord = [&] {
        if (quoted || !word.empty()) {
            arguments.push_back(argument(std::move(word), quoted));
        }
        word.clear();
        quoted = false;
    };
    for (const char character : command) {
        if (character == '"') {
            inQuotes = !inQuotes;
            quoted = true;
        } else if (character == ' ' && !inQuotes) {
            endWord();
        } else {
            word += character;
        }
    }
    endWord();
    return arguments;
}

} // namespace corvanta
