#pragma once

namespace noise_test {

/// How often memory was asked for with new since the program began; 0 under a sanitizer, which keeps
/// its own operators.
long allocationCount();

} // namespace noise_test
