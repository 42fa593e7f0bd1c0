#pragma once

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <platform/Task.hpp>

#include <functional>
#include <mutex>
#include <optional>
#include <utility>

namespace corvanta {

/// Runs an action at most once with success, and remembers what it gave. After a failure it stays shut:
/// whoever wants to try again makes a new one.
template <typename Result>
class CorvantaSdkVideoRequestHandler {
  public:
    using Action = std::function<Task<Result>()>;

    explicit CorvantaSdkVideoRequestHandler(Action action) : action_(std::move(action)) {}

    /// The action's result, from now or from before. Throws `operationStillsInProgress` while the action runs
    /// and for ever after it has failed; its failure is thrown as it came. The handler must outlive the task.
    Task<Result> result() {
        if (auto previous = begin()) {
            co_return *std::move(previous);
        }
        Result fresh = co_await action_();
        const std::lock_guard lock(mutex_);
        isProcessing_ = false;
        previousResult_ = fresh;
        co_return fresh;
    }

  private:
    std::optional<Result> begin() {
        const std::lock_guard lock(mutex_);
        if (isProcessing_) {
            throw CorvantaSdkVideoError(CorvantaSdkVideoError::Case::operationStillsInProgress,
                                        "this object has been run before; take a new one of that id");
        }
        if (!previousResult_) {
            isProcessing_ = true;
        }
        return previousResult_;
    }

    std::mutex mutex_;
    bool isProcessing_ = false;
    std::optional<Result> previousResult_;
    Action action_;
};

} // namespace corvanta
