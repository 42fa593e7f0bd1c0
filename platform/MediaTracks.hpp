#pragma once

#include <platform/AffineTransform.hpp>

#include <optional>

struct AVFormatContext;
struct AVStream;

/// Which of an open file's tracks ffmpeg takes, and how its picture is turned.
namespace corvanta {

/// A picture that stands for the file, such as a song's cover: no video track.
bool isCover(const AVStream& track);

/// Of a media type as libav numbers them; covers left out. Null without such a track.
const AVStream* firstTrack(const AVFormatContext& format, int mediaType);

/// The display transform of the first video track, the identity if it carries none; nothing without such a
/// track.
std::optional<AffineTransform> displayTransform(const AVFormatContext& format);

/// The sound that ffmpeg takes when none is named: of those that have packets, the default one, then the one
/// with the most channels. Null without sound. To be asked when the file has been analysed.
const AVStream* chosenSound(const AVFormatContext& format);

} // namespace corvanta
