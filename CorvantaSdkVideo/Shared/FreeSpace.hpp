#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace corvanta {

/// What a run writes at least into the folder of the file at `path`.
struct NeededSpace {
    std::string path;
    std::int64_t bytes;
};

/// Throws `error` with "no space: needs N MB, and M MB are free" if a file system has less room than what is
/// needed in all its folders; a file that is written over gives its room. A folder that can't be asked
/// passes.
void requireFreeSpace(const std::vector<NeededSpace>& needed, CorvantaSdkVideoError::Case error);
void requireFreeSpace(const std::string& path, std::int64_t bytes, CorvantaSdkVideoError::Case error);

/// The same for a copy of the files' pictures and sounds to `path`. Nothing is refused that fits, so that
/// files with other tracks, which are left out, pass.
void requireSpaceForCopies(const std::string& path, const std::vector<CorvantaSdkVideoInformation>& files,
                           CorvantaSdkVideoError::Case error);

/// What copying the pictures of these ranges takes at least; 0 for a file that doesn't tell.
std::int64_t leastCopiedBytes(const URL& video, const std::vector<CorvantaSdkVideoTimeRange>& ranges);

/// What an encoded video of that length takes at least, be it black and silent.
std::int64_t leastEncodedBytes(double seconds);

} // namespace corvanta
