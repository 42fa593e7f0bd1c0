#pragma once

#include <CorvantaSdkVideo/Shared/Progress/ProgressMeter.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>
#include <platform/NeverDestroyed.hpp>
#include <platform/Stream.hpp>
#include <platform/UUID.hpp>

#include <memory>
#include <mutex>
#include <unordered_map>

namespace corvanta {

/// How far the requests of this process have come, by their ids. Safe from any thread.
class RequestProgress {
  public:
    static RequestProgress& shared();

    /// A run of the request begins; it lasts as long as the meter.
    std::shared_ptr<ProgressMeter> begin(const UUID& id);
    /// The meter of the run that is under way; nothing if there is none.
    std::shared_ptr<ProgressMeter> running(const UUID& id);

    /// The last value of a run that is under way, or a fraction of 1 if the stored request is complete; then
    /// each further value. A run of another process tells its end alone. Throws what `streamVideo` throws.
    Stream<CorvantaSdkVideoProgress> stream(const UUID& id, VideoStore& store);

  private:
    friend class NeverDestroyed<RequestProgress>;
    class Channel;
    struct Entry {
        std::weak_ptr<Channel> channel;
        std::weak_ptr<ProgressMeter> meter;
    };

    RequestProgress() = default;
    std::shared_ptr<Channel> channel(const UUID& id);

    std::mutex mutex_;
    std::unordered_map<UUID, Entry, UUIDHash> entries_;
};

} // namespace corvanta
