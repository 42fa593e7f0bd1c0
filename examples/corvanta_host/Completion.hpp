#pragma once

#include "Console.hpp"

#include <CLI/App.hpp>

#include <string>
#include <vector>

/// Prints what the last of the words, which may be empty, can go on as: what the shells' scripts in
/// `completion/` ask. Each line is one candidate, a tab and what it is, or ":files" for the names of files,
/// followed by the extensions that are meant, if not all are. What can't be found out is left out.
void complete(Console& console, const CLI::App& app, const std::vector<std::string>& words);
