#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

/// The command line as CLI11 takes it, from its end. A word in a command's place that is none ends with
/// UsageError, and `help COMMAND` becomes that command's `--help`.
std::vector<std::string> reversedWords(const CLI::App& app, std::vector<std::string> words);

/// All subcommands, hidden ones too.
std::vector<const CLI::App*> commandsBelow(const CLI::App& app);

/// The subcommand that the words name, of any depth; the program itself without one.
const CLI::App& commandOf(const CLI::App& app, const std::vector<std::string>& words);

/// What helps with words that CLI11 could not follow: the option that is nearest to the first one that there
/// isn't, else where to read on.
std::string hintFor(const CLI::App& app, const std::vector<std::string>& words);

/// Accepts one of some words; for another one it tells the nearest of them.
CLI::Validator oneOf(const std::vector<std::string>& names);

/// The words that an option accepts by `oneOf`, or a flag's none.
std::vector<std::string> wordsFor(const CLI::Option& option);
