#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoJoin.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>
#include <platform/CodedTracks.hpp>

#include <string>
#include <vector>

namespace corvanta {

/// A probed file and its tracks as its container describes them.
struct JoinFile {
    CorvantaSdkVideoInformation information;
    std::vector<CodedTrack> tracks;
};

/// The extension of the container that copies of these files are put into: the one that is asked for, or what
/// the first file is, whatever that is called. Empty if no container takes their codecs.
std::string copyExtension(const JoinFile& first, const std::optional<std::string>& wanted);

/// The first difference from the first file that keeps the packets of the files from standing one behind the
/// other, in words; empty if they may. Pictures at other rates are no difference where each states its time.
std::string copyObstacle(const std::vector<JoinFile>& files);

/// What a join of the files does; they must be at least two. Throws `mergeFailed` for files that can be
/// neither copied nor encoded as one, `invalidResolution` for a side that is too small.
CorvantaSdkVideoJoinInspection joinOf(const std::vector<JoinFile>& files,
                                      const CorvantaSdkVideoJoinOptions& options);

} // namespace corvanta
