#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoFrameRate.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoMergeTracks.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommand.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/MergeForm.hpp>
#include <CorvantaSdkVideo/Shared/Models/CorvantaSdkVideoInformation.hpp>

#include <optional>
#include <string>
#include <vector>

namespace corvanta {

/// Writes the one command that joins files of any kind through a filter graph: pictures become MPEG-4, sound
/// becomes AAC, 44100 Hz, stereo, unless another form is given. Stateless, safe from any thread.
///
/// Every file fills its container's duration in every output track: what a stream is shorter than its
/// container, or lacks altogether, is filled with black or silence behind it, so that the output tracks stay
/// aligned. Nothing is cut: a sound that decodes longer than it states (AAC fills its last frame up, by 23 ms
/// at most for 44100 Hz) moves the sounds behind it, over many files audibly. A picture may come one frame
/// early or late where the rate is converted.
///
/// A stream that states no duration, as in Matroska files, counts as 0 long and is followed by a filler as
/// long as its file. A stream that several tracks, or several places of one track, read is decoded once and
/// buffered by ffmpeg, at the size of raw pictures.
class FFMPEGMergeCommandGenerator {
  public:
    /// `width` and `height` are pixels; an absent one follows the inputs. Empty selections join the i-th
    /// tracks of all files. `outputPath` is a plain path. The script is empty if no track is left.
    ///
    /// Refuses nothing: what ffmpeg won't take (a rate of 0, a side of 0, a picture that fits with an odd
    /// side) fails when the command runs. A size that is not finite or too large, and an overflow or a
    /// division by zero in the size and duration arithmetic, end the process.
    FFMPEGCommand generateCommand(const std::vector<CorvantaSdkVideoInformation>& videosInfo,
                                  std::optional<double> width, std::optional<double> height,
                                  const std::vector<CorvantaSdkVideoMergeVideoTrack>& videoTracks,
                                  const std::vector<CorvantaSdkVideoMergeAudioTrack>& audioTracks,
                                  CorvantaSdkVideoFrameRate framesRate, const std::string& outputPath,
                                  const MergeForm& form = {}) const;
};

} // namespace corvanta
