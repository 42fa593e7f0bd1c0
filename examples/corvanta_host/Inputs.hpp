#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <string>
#include <vector>

/// The files of the command line, named as they stand.
std::vector<corvanta::CorvantaSdkVideoFile> inputFiles(const std::vector<std::string>& paths);

std::vector<corvanta::URL> urlsOf(const std::vector<corvanta::CorvantaSdkVideoFile>& files);

/// Throws for a file that is not there or holds no media: a request's `build()` removes an older output
/// before the module looks at its inputs. Ends at the first one.
void requireReadable(const std::vector<corvanta::CorvantaSdkVideoFile>& files);

/// The files that a camera held upright has written with a turn of -90 degrees, whose picture is small in a
/// frame of the files' own sizes.
std::vector<corvanta::URL> uprightClips(const std::vector<corvanta::URL>& urls);
