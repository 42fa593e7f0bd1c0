#include <CorvantaSdkVideo/Commands/Helpers/RequestProgress.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

using Progress = CorvantaSdkVideoProgress;
using Callback = Stream<Progress>::Callback;

} // namespace

// Those who listen to one request. The lock is held while they are called, and is theirs to take again, so
// that ending a subscription waits for its callback on another thread, and can be done in the callback
// itself.
class RequestProgress::Channel : public std::enable_shared_from_this<Channel> {
  public:
    void publish(const Progress& progress) {
        const std::lock_guard lock(mutex_);
        last_ = progress;
        std::vector<std::int64_t> listening;
        for (const auto& [number, callback] : callbacks_) {
            listening.push_back(number);
        }
        for (const std::int64_t number : listening) {
            if (const auto found = callbacks_.find(number); found != callbacks_.end()) {
                const Callback callback = found->second;
                callback(progress);
            }
        }
    }

    Subscription subscribe(const Callback& callback, bool isRunning) {
        const std::lock_guard lock(mutex_);
        const std::int64_t number = ++lastNumber_;
        callbacks_.emplace(number, callback);
        Subscription subscription(std::shared_ptr<void>(
            nullptr, [self = shared_from_this(), number](void*) { self->remove(number); }));
        if (isRunning && last_) {
            const Progress now = *last_;
            callback(now);
        }
        return subscription;
    }

  private:
    void remove(std::int64_t number) {
        const std::lock_guard lock(mutex_);
        callbacks_.erase(number);
    }

    std::recursive_mutex mutex_;
    std::map<std::int64_t, Callback> callbacks_;
    std::int64_t lastNumber_ = 0;
    std::optional<Progress> last_;
};

RequestProgress& RequestProgress::shared() {
    static NeverDestroyed<RequestProgress> progress;
    return *progress;
}

std::shared_ptr<ProgressMeter> RequestProgress::begin(const UUID& id) {
    if (auto meter = running(id)) {
        return meter;
    }
    const auto listeners = channel(id);
    auto meter = std::make_shared<ProgressMeter>(
        [listeners](const Progress& progress) { listeners->publish(progress); });
    const std::lock_guard lock(mutex_);
    entries_[id].meter = meter;
    return meter;
}

std::shared_ptr<ProgressMeter> RequestProgress::running(const UUID& id) {
    const std::lock_guard lock(mutex_);
    const auto found = entries_.find(id);
    return found != entries_.end() ? found->second.meter.lock() : nullptr;
}

Stream<Progress> RequestProgress::stream(const UUID& id, VideoStore& store) {
    return Stream<Progress>([this, id, rows = store.streamVideo(id)](const Callback& callback) {
        auto both = std::make_shared<std::vector<Subscription>>();
        const auto isEnded = std::make_shared<std::atomic<bool>>(false);
        const Callback tell = [isEnded, callback](const Progress& progress) {
            *isEnded = progress.fraction == 1;
            callback(progress);
        };
        both->push_back(channel(id)->subscribe(tell, running(id) != nullptr));
        // Of a run that is under way here its meter tells, also of the end.
        both->push_back(rows.subscribe([this, id, isEnded, callback](const LocalVideoRequest& row) {
            if (row.status == LocalVideoRequest::Status::completed && running(id) == nullptr &&
                !isEnded->exchange(true)) {
                Progress end;
                end.phase = Progress::Phase::finishing;
                end.fraction = 1;
                callback(end);
            }
        }));
        return Subscription(std::move(both));
    });
}

std::shared_ptr<RequestProgress::Channel> RequestProgress::channel(const UUID& id) {
    const std::lock_guard lock(mutex_);
    std::erase_if(entries_, [](const auto& entry) {
        return entry.second.channel.expired() && entry.second.meter.expired();
    });
    Entry& entry = entries_[id];
    auto found = entry.channel.lock();
    if (!found) {
        found = std::make_shared<Channel>();
        entry.channel = found;
    }
    return found;
}

} // namespace corvanta
