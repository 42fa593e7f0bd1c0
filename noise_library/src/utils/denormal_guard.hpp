#pragma once

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

namespace TALVO::UTILS {

/// While it lives, values too small for a normal float count as zero on this thread: with them the
/// transforms would run many times slower in fading silence. The caller's mode comes back after it.
class DenormalGuard {
  public:
#if defined(__SSE2__)
    DenormalGuard() : before_(_mm_getcsr()) { _mm_setcsr(before_ | flushToZero | denormalsAreZero); }
    ~DenormalGuard() { _mm_setcsr(before_); }
#else
    DenormalGuard() = default;
#endif
    DenormalGuard(DenormalGuard const&) = delete;
    DenormalGuard& operator=(DenormalGuard const&) = delete;

#if defined(__SSE2__)
  private:
    static constexpr unsigned flushToZero = 0x8000;
    static constexpr unsigned denormalsAreZero = 0x0040;
    unsigned before_;
#endif
};

} // namespace TALVO::UTILS
