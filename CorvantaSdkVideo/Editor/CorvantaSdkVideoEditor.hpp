#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoEditorInput.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoEditorResult.hpp>
#include <platform/Task.hpp>

#include <cstdint>
#include <memory>
#include <optional>

namespace corvanta {

/// Carries out edits and makes the small pictures of a trimmer strip. Safe from any thread; an editor must
/// outlive its tasks.
class CorvantaSdkVideoEditor {
  public:
    virtual ~CorvantaSdkVideoEditor() = default;

    /// Writes the kept range with its turn and volume to `outputURL`. Nothing of the picture is encoded anew,
    /// so an edit is quick and lossless, and bound to what the source's coding allows. With ffmpeg 5.1:
    ///
    /// - The picture starts at the source's next key frame at or after `startPosition`; the sound starts at
    ///   `startPosition`, and until the key frame there is sound alone.
    /// - A source with B-frames loses its first group of pictures even when `startPosition` is 0. A clip of
    ///   one group loses its picture altogether: the edit leaves the sound, and fails if there is none.
    /// - A turn is recorded as a display matrix in mp4 and mov: 90 reads back as -90, 180 as -180, and 0
    ///   leaves no matrix. Matroska keeps none.
    /// - The turn is recorded in the opposite sense to how a probe states it: a phone's clip at -90 that is
    ///   edited with the -90 of its probe comes out at +90, upside down. To keep it upright pass 90.
    /// - mp4 takes h264, hevc, mpeg4, vp9 and av1 pictures; vp8 (most older webm files), theora, wmv and flv
    ///   are refused with `trimFailed`.
    /// - A failed or refused edit leaves a broken file, or none, where an older output was.
    ///
    /// All this is told of `copied`. An `exact` cut keeps every picture with `start <= time < end`, its first
    /// one shown from the very start, with the sound of the same span, and turns the picture on top of the
    /// source's own turn. Of H.264 and HEVC only the pictures before the first key picture that can be
    /// entered, and ones at the end that refer to pictures behind it, are encoded anew; the result's `cutWay`
    /// says so. Other codecs, interlaced pictures and open groups of H.264 are encoded as a whole. HEVC comes
    /// out as "hev1". The tags of the file and of both tracks are kept (title, date, place, language; in mp4
    /// and mov an application's own too, or where there are none, covers); chapters go. An exact cut needs
    /// room for its pictures in the documents folder while it runs. A host that wants an older output kept
    /// writes to a new place and moves the file when the edit has succeeded.
    ///
    /// Throws `userNotAuthenticated`, `notFoundVideo` or `invalidFile` for the source, `invalidTrimRange`, or
    /// `trimFailed`, whose cause goes to the log. `trimFailed` without a run, and with the output untouched,
    /// means that the output is the source itself.
    virtual Task<CorvantaSdkVideoEditorResult> edit(CorvantaSdkVideoEditorInput video) = 0;

    /// Writes the frame `interval` seconds before the end of the file as a JPEG file in the documents
    /// directory. Sizes are pixels; an absent one keeps the aspect. The new file is the caller's, to remove
    /// when it has been read. Past the last frame of a picture that is shorter than its sound there is
    /// nothing to write, and no file lies at the URL.
    ///
    /// Throws `userNotAuthenticated`, `notFoundVideo` or `invalidFile`, `invalidTrimRange` for an interval
    /// longer than the file, or `trimFailed`.
    virtual Task<URL> getThumbnailForVideo(URL at, double interval, std::optional<std::int64_t> width,
                                           std::optional<std::int64_t> height) = 0;

    /// What a cut of that range would do, found out without encoding anything. Throws as `edit` does before
    /// it runs anything, and PlatformError for a file without a picture. An editor of a host's own that
    /// doesn't override it finds that copying loses nothing.
    virtual Task<CorvantaSdkVideoCutInspection> inspectCut(URL video, CorvantaSdkVideoTimeRange range);

    /// Draws how loud the first sound track is over its whole length, white on nothing, as a PNG file of that
    /// many pixels in the documents directory. The new file is the caller's, to remove when it has been read.
    /// Absent from an editor of a host's own that doesn't override it. Throws as `getThumbnailForVideo` does;
    /// a file without sound is `trimFailed`.
    virtual Task<std::optional<URL>> getWaveformForVideo(URL at, std::int64_t width, std::int64_t height);
};

/// An editor of the module's own.
std::shared_ptr<CorvantaSdkVideoEditor> makeCorvantaSdkVideoEditor();

} // namespace corvanta
