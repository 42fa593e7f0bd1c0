#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoCut.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoEditorInput.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <memory>
#include <vector>

namespace corvanta {

/// Cuts at any picture, and encodes no more of them than it must: from the first safe key picture of a range
/// on they are copied. What lies before it is encoded with parameters of its own, and so are pictures at the
/// end that refer to ones behind it; all of them are then written into one track.
///
/// Keeps no state between calls. Temporary files lie in the documents directory, and go with the task.
class ExactCut {
  public:
    explicit ExactCut(std::shared_ptr<FFMPEGCommandExecutor> executor);

    /// Writes the ranges, one behind the other, to the input's output, and tells how it made each. Throws
    /// what keeps it from that.
    Task<std::vector<CorvantaSdkVideoCutWay>> write(CorvantaSdkVideoEditorInput input,
                                                    std::vector<CorvantaSdkVideoTimeRange> ranges,
                                                    std::shared_ptr<ProgressMeter> meter = nullptr) const;

    /// Throws PlatformError if the file can't be read or has no picture.
    static Task<CorvantaSdkVideoCutInspection> inspect(URL video, CorvantaSdkVideoTimeRange range);

  private:
    std::shared_ptr<FFMPEGCommandExecutor> executor_;
};

} // namespace corvanta
