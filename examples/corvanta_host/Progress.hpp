#pragma once

#include "Console.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// Shows how far the module has come, as long as it lives: files that are probed, then a bar with percent,
/// speed and time left, in one line of a terminal, as wide as that is; elsewhere plain lines, few enough for
/// a log.
class Progress {
  public:
    /// Without `totalMillis` of output to come, only the time spent is shown. `fileCount` files are probed
    /// first, once or more often.
    Progress(Console& console, std::string label, std::optional<std::int64_t> totalMillis,
             std::size_t fileCount = 1);
    /// What an operation tells of itself; it takes the place of everything else that is known.
    corvanta::CorvantaSdkVideoProgressCallback listener() const;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

  private:
    class Display;

    Console& console_;
    std::shared_ptr<Display> display_;
};
