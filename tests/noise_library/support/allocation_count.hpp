#pragma once

#include <atomic>
#include <cstdlib>
#include <new>

/// Replaces the program's operators: for one file of a test program.
namespace noise_test {

/// How often memory was asked for with new; 0 under a sanitizer, which keeps its own operators.
inline std::atomic<long> allocations = 0;

} // namespace noise_test

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
void* operator new(std::size_t size) {
    ++noise_test::allocations;
    if (void* const memory = std::malloc(size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
#endif
