#pragma once

#include <CorvantaSdkVideo/Commands/Join/JoinForm.hpp>
#include <CorvantaSdkVideo/Shared/VideosInformationGenerator.hpp>
#include <platform/Task.hpp>

#include <vector>

namespace corvanta {

/// The files with their tracks, read in process, and with the lengths of tracks that state none.
Task<std::vector<JoinFile>> joinFiles(std::vector<CorvantaSdkVideoInformation> information);

/// Takes away what sounds are longer than their pictures by, since codecs fill up their last frames: a merge
/// would show black for it between the files. When that has come to two frames, it is shown once, so that
/// sound and picture stay together.
std::vector<CorvantaSdkVideoInformation>
withoutOverhang(std::vector<CorvantaSdkVideoInformation> information);

/// Finds out what a join would do. Immutable; outlives the tasks that it gives.
class JoinInspector {
  public:
    explicit JoinInspector(
        VideosInformationGenerator videosInformationGenerator = VideosInformationGenerator(),
        CorvantaSdkVideoFileValidator videosValidator = {});

    /// Throws what a probe of the files and `joinOf` throw, `userNotAuthenticated`, and `notEnoughVideos` for
    /// less than two files.
    Task<CorvantaSdkVideoJoinInspection> inspect(std::vector<URL> videos,
                                                 CorvantaSdkVideoJoinOptions options) const;

  private:
    VideosInformationGenerator videosInformationGenerator_;
    CorvantaSdkVideoFileValidator videosValidator_;
};

} // namespace corvanta
