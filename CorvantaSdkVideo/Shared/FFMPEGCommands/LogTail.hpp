#pragma once

#include <deque>
#include <string>
#include <string_view>

namespace corvanta {

/// The last lines of a run's log that can say why it failed: what ffmpeg tells of inputs, outputs and its
/// progress is left out. One thread at a time.
class LogTail {
  public:
    void add(std::string_view line);

    /// The lines in one, separated by "; ". Empty if nothing was said.
    std::string text() const;

  private:
    std::deque<std::string> lines_;
};

} // namespace corvanta
