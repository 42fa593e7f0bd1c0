#pragma once

#include "Console.hpp"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// Shows how far ffmpeg has come, as long as it lives: a bar with percent, speed and time left on a terminal,
/// plain lines otherwise.
class Progress {
  public:
    /// Without `totalMillis` of output to come, only the time spent is shown.
    Progress(const Console& console, std::string label, std::optional<std::int64_t> totalMillis);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

  private:
    class Display;

    std::shared_ptr<Display> display_;
};
