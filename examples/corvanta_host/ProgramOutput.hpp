#pragma once

#include <string>
#include <vector>

/// How a program that was run by itself has ended.
struct ProgramOutput {
    /// The exit status; -1 if it could not be started, or did not end by itself within half a minute.
    int status = -1;
    /// What it wrote to standard output and standard error.
    std::string text;
};

/// Runs a program, looked for in PATH unless its name has a slash, with an empty standard input.
ProgramOutput outputOf(const std::string& program, const std::vector<std::string>& arguments);
