#include "noise_library/support/allocation_count.hpp"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> count = 0;

} // namespace

namespace noise_test {

long allocationCount() {
    return count;
}

} // namespace noise_test

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void* operator new(std::size_t size) {
    ++count;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
#endif
