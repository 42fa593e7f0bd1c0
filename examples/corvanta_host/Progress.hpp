#pragma once

#include "Console.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>

#include <cstddef>
#include <memory>
#include <string>

/// Shows how far the module has come, as long as it lives: files that are probed, then a bar with percent,
/// speed and time left, in one line of a terminal, as wide as that is; elsewhere plain lines, few enough for
/// a log.
class Progress {
  public:
    /// Only the time spent is shown, unless an operation tells `listener` more. `fileCount` files are probed
    /// first, once or more often.
    Progress(Console& console, std::string label, std::size_t fileCount = 1);
    /// What an operation tells of itself; it takes the place of everything else that is known.
    corvanta::CorvantaSdkVideoProgressCallback listener() const;
    /// The same for one that writes pictures of their own: how fast means nothing there.
    corvanta::CorvantaSdkVideoProgressCallback listenerToPictures() const;
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress();

  private:
    class Display;

    Console& console_;
    std::shared_ptr<Display> display_;
};
