#pragma once

#include "Console.hpp"
#include "FileArguments.hpp"

#include <cstddef>
#include <functional>

/// Runs jobs one after the other, by their numbers. A failure is told in its place, and the others go on; at
/// the end `Told` is thrown, with the failures' status if they have the same, else that of a failure. Several
/// jobs have one JSON document, a list; the failure of a single one is thrown as it is.
void runEach(Console& console, std::size_t count, const std::function<void(std::size_t)>& run);

/// The same for each file of the command line, which failures name.
void runEachFile(Console& console, const FileArguments& arguments,
                 const std::function<void(const Files&)>& run);
