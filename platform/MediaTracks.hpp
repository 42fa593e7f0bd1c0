#pragma once

struct AVFormatContext;
struct AVStream;

/// Which of an open file's tracks ffmpeg takes.
namespace corvanta {

/// A picture that stands for the file, such as a song's cover: no video track.
bool isCover(const AVStream& track);

/// The sound that ffmpeg takes when none is named: of those that have packets, the default one, then the one
/// with the most channels. Null without sound. To be asked when the file has been analysed.
const AVStream* chosenSound(const AVFormatContext& format);

} // namespace corvanta
