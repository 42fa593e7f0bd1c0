#pragma once

#include <mutex>

namespace corvanta {

/// Reads the noise model into the library's instance of one engine while that waits for something else. Any
/// thread.
class ModelLoading {
  public:
    /// Does nothing once `stop` was called. What fails is left to the session, which tells of it.
    void load();

    /// Waits for a reading that is under way, and lets none begin: the library may go then.
    void stop();

    bool isLoaded() const;

  private:
    mutable std::mutex mutex_;
    bool stopped_ = false;
    bool loaded_ = false;
};

} // namespace corvanta
