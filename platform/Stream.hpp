#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace corvanta {

/// Keeps a subscription alive. Move-only; the subscription ends with its scope or with `cancel`.
///
/// Ending it waits for a callback that is running on another thread, so that none runs afterwards: don't end
/// it while you hold a lock that the callback takes, that is a deadlock. The callback itself may end it.
class Subscription {
  public:
    Subscription() = default;
    /// `token` is what keeps the subscription alive: its last owner going away ends it.
    explicit Subscription(std::shared_ptr<void> token) : token_(std::move(token)) {}
    Subscription(Subscription&&) noexcept = default;
    Subscription& operator=(Subscription&&) noexcept = default;
    Subscription(const Subscription&) = delete;
    Subscription& operator=(const Subscription&) = delete;
    ~Subscription() = default;

    void cancel() { token_.reset(); }

  private:
    std::shared_ptr<void> token_;
};

/// Values over time: never fails and never completes. A stream is a recipe, run anew for each subscriber; the
/// callback runs on whatever thread produces the value.
///
/// A callback must not throw: one that does ends the process, with the exception's text on standard error,
/// since the change that it hears of can't be taken back. Only what it throws at the first value, within
/// `subscribe`, comes back to the subscriber.
template <typename T>
class Stream {
  public:
    using Callback = std::function<void(const T&)>;
    using Source = std::function<Subscription(Callback)>;

    explicit Stream(Source source) : source_(std::move(source)) {}

    [[nodiscard]] Subscription subscribe(Callback callback) const { return source_(std::move(callback)); }

    /// A stream of `transform(value)` for each value.
    template <typename Transform, typename U = std::invoke_result_t<Transform, const T&>>
    Stream<U> map(Transform transform) const {
        return Stream<U>([source = source_, transform](typename Stream<U>::Callback callback) {
            return source([transform, callback](const T& value) { callback(transform(value)); });
        });
    }

    /// A stream of the values of both, each as it comes. A subscriber is subscribed to `this` first.
    Stream merge(Stream other) const {
        return Stream([first = source_, second = std::move(other.source_)](const Callback& callback) {
            auto both = std::make_shared<std::vector<Subscription>>();
            both->push_back(first(callback));
            both->push_back(second(callback));
            return Subscription(std::move(both));
        });
    }

  private:
    Source source_;
};

} // namespace corvanta
