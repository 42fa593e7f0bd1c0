#include <CorvantaSdkVideo/Store/WorkingContext.hpp>

#include <algorithm>

namespace corvanta {

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

void WorkingContext::announceCommit(const std::vector<RowKey>& updatedRows) noexcept {
    performSync([&] {
        for (const auto told = observers_; const auto& entry : told) {
            if (entry->active) {
                entry->observer(updatedRows);
            }
        }
    });
}

} // namespace corvanta
