#pragma once

#include "Console.hpp"

#include <CLI/App.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <functional>
#include <string>
#include <vector>

/// What a chosen subcommand does; a thrown error is the program's failure.
using Command = std::function<void(Console&)>;

/// Each adds one subcommand, which puts its work into `chosen` when it is on the command line.
void addInfoCommand(CLI::App& app, Command& chosen);
void addThumbnailCommand(CLI::App& app, Command& chosen);

/// The files of the command line, named as they stand.
std::vector<corvanta::CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths);

/// The output location, relative to the working directory, without extension.
corvanta::CorvantaSdkVideoFileDescriptor outputLocation(const std::string& path);
