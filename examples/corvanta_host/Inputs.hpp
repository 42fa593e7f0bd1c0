#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <string>
#include <vector>

/// The files of the command line, named as they stand.
std::vector<corvanta::CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths);

/// Throws `notFoundVideo` for the first file that is not there.
void requireThere(const std::vector<corvanta::CorvantaSdkVideoFile>& files);

/// What the files are. Throws for the first one that is not there or holds no media: a request's `build()`
/// removes an older output before the module looks at its inputs.
std::vector<corvanta::CorvantaSdkVideoInformation>
requireReadable(const std::vector<corvanta::CorvantaSdkVideoFile>& files);
