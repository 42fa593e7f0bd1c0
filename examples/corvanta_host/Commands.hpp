#pragma once

#include "Console.hpp"

#include <CLI/App.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <functional>

/// What a chosen subcommand does; a thrown error is the program's failure.
using Command = std::function<void(Console&)>;

/// Adds all subcommands, each of which puts its work into `chosen` when it is on the command line.
void addCommands(CLI::App& app, Command& chosen);

/// Each adds one subcommand, which puts its work into `chosen` when it is on the command line.
void addEditCommand(CLI::App& app, Command& chosen);
void addInfoCommand(CLI::App& app, Command& chosen);
void addThumbnailCommand(CLI::App& app, Command& chosen);
void addContactSheetCommand(CLI::App& app, Command& chosen);
void addCanConcatCommand(CLI::App& app, Command& chosen);
void addConcatCommand(CLI::App& app, Command& chosen);
void addJoinCommand(CLI::App& app, Command& chosen);
void addMergeCommand(CLI::App& app, Command& chosen);
void addEncodeCommand(CLI::App& app, Command& chosen);
void addRequestsCommand(CLI::App& app, Command& chosen);
void addWatchCommand(CLI::App& app, Command& chosen);
void addProcessCommand(CLI::App& app, Command& chosen);
void addCleanCommand(CLI::App& app, Command& chosen);
void addTracksCommand(CLI::App& app, Command& chosen);
void addDoctorCommand(CLI::App& app, Command& chosen);
void addJobsCommand(CLI::App& app, Command& chosen);
