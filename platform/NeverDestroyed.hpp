#pragma once

#include <utility>

namespace corvanta {

/// A value of static storage that is made as others are and never destroyed, so that threads that still run
/// while the process ends find it alive: `static NeverDestroyed<T> shared; return *shared;`
template <typename T>
class NeverDestroyed {
  public:
    template <typename... Arguments>
    explicit NeverDestroyed(Arguments&&... arguments) : value_(std::forward<Arguments>(arguments)...) {}
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;
    // Leaves the value alone.
    ~NeverDestroyed() {} // NOLINT(modernize-use-equals-default): a union's would be deleted

    T& operator*() { return value_; }

  private:
    union {
        T value_;
    };
};

} // namespace corvanta
