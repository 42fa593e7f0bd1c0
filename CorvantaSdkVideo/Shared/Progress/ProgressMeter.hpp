#pragma once

#include <CorvantaSdkVideo/CorvantaSdkVideoProgress.hpp>

#include <mutex>

namespace corvanta {

/// Makes one rising fraction of an operation's parts. Safe from any thread; the callback is called within the
/// operations, one at a time, and may call them.
class ProgressMeter {
  public:
    /// Tells at once that the operation is probing.
    explicit ProgressMeter(CorvantaSdkVideoProgressCallback callback);
    ProgressMeter(const ProgressMeter&) = delete;
    ProgressMeter& operator=(const ProgressMeter&) = delete;

    /// How long the result will be; what can't be a length counts as unknown.
    void setTotal(double seconds);

    /// A part begins: `share` of what is left of the whole, and `seconds` of material to go over.
    void beginPart(double share, double seconds);
    /// The part waits in line, runs, and has come so far; a speed of 0 is none.
    void wait();
    void start();
    void advance(double seconds, double speed);
    /// The part is done, however much it has told of.
    void endPart();

    /// All parts are done.
    void finish();
    /// The result is there.
    void complete();

  private:
    void raise(double fraction);
    void tell();

    std::recursive_mutex mutex_;
    CorvantaSdkVideoProgressCallback callback_;
    CorvantaSdkVideoProgress progress_;
    double base_ = 0;
    double share_ = 0;
    double seconds_ = 0;
};

} // namespace corvanta
