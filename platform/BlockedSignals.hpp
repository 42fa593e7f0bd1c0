#pragma once

#include <csignal>

#include <pthread.h>

namespace corvanta {

/// Keeps the host's signal handlers off the threads that are started as long as the object lives.
class BlockedSignals {
  public:
    BlockedSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &previous_);
    }
    BlockedSignals(const BlockedSignals&) = delete;
    BlockedSignals& operator=(const BlockedSignals&) = delete;
    ~BlockedSignals() { pthread_sigmask(SIG_SETMASK, &previous_, nullptr); }

  private:
    sigset_t previous_{};
};

} // namespace corvanta
