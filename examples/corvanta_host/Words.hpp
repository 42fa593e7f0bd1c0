#pragma once

#include <CLI/App.hpp>

#include <string>
#include <vector>

/// The words of a command line as the parser takes them, the last one first. "help" and "help COMMAND" become
/// "--help"; a word in the place of a command that is none throws UsageError, with the command that is
/// nearest.
std::vector<std::string> reversedWords(const CLI::App& app, std::vector<std::string> words);
