#include <CorvantaSdkVideo/Store/WorkingContext.hpp>

#include <platform/Errors.hpp>

#include <algorithm>
#include <string>

namespace corvanta {

namespace {

void tell(const WorkingContext::Observer& observer, const WorkingContext::Notice& notice) {
    try {
        observer(notice);
    } catch (const std::exception& error) {
        fatalError((std::string("A stream's callback threw: ") + error.what()).c_str());
    }
}

} // namespace

Subscription WorkingContext::observe(Observer observer) {
    auto entry = std::make_shared<Entry>(Entry{std::move(observer)});
    performSync([&] { observers_.push_back(entry); });
    const auto remove = [context = shared_from_this()](Entry* ended) {
        // The observer's captures are released outside the scope: what they own may use the store.
        std::shared_ptr<Entry> removed;
        context->performSync([&] {
            ended->active = false;
            const auto position = std::find_if(context->observers_.begin(), context->observers_.end(),
                                               [&](const auto& held) { return held.get() == ended; });
            removed = std::move(*position);
            context->observers_.erase(position);
        });
    };
    return Subscription(std::shared_ptr<Entry>(entry.get(), remove));
}

void WorkingContext::announceCommit(const Notice& notice) noexcept {
    performSync([&] {
        for (const auto told = observers_; const auto& entry : told) {
            if (entry->active) {
                tell(entry->observer, notice);
            }
        }
    });
}

} // namespace corvanta
