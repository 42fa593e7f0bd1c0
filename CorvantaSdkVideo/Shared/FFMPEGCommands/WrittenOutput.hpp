#pragma once

#include <string>
#include <string_view>

namespace corvanta {

/// What a run of ffmpeg has left of its output. ffmpeg 5 calls a run a success also when the disk was full at
/// its very end, where the last buffer and the index are written: the file can't be played then.
class WrittenOutput {
  public:
    /// `command` is the whole text of the run.
    explicit WrittenOutput(std::string_view command);

    /// Takes a line of the run's log. For one thread at a time.
    void hear(std::string_view line);

    /// For a run that has returned success. False if its log told of a write that failed, or if the file is
    /// of a kind that states its length (MP4, QuickTime, Matroska) and doesn't open with a track and a
    /// length. An output that is not there was no file, or has been taken away since.
    bool isWhole() const;

  private:
    bool failed_ = false;
    std::string path_;
};

} // namespace corvanta
