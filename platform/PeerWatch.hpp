#pragma once

#include <platform/UniqueFd.hpp>

#include <functional>
#include <string>
#include <thread>

namespace corvanta {

/// Calls back, on a thread of its own, at its start and whenever a peer of a `PeerFile` may have told of a
/// change or may have gone. Where the kernel can't tell of changes to files (its instances are few), it calls
/// back twice a second.
///
/// Calls come one after the other, and may come without a cause. The callback must not throw, and must not
/// end the watch. The end of the watch waits for a call that is under way.
class PeerWatch {
  public:
    /// Throws std::system_error.
    PeerWatch(const std::string& peerFile, std::function<void()> onNews);
    PeerWatch(const PeerWatch&) = delete;
    PeerWatch& operator=(const PeerWatch&) = delete;
    ~PeerWatch();

  private:
    void listen();
    bool takeEvents();

    std::function<void()> onNews_;
    UniqueFd events_;
    UniqueFd stop_;
    bool isTold_;
    std::thread thread_;
};

} // namespace corvanta
