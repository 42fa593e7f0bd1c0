#pragma once

#include <chrono>

#include <sys/resource.h>

namespace corvanta {

/// What a piece of work took, in seconds; the processor's with that of the children that have ended.
struct Cost {
    double wall;
    double processor;
};

inline double processorSeconds() {
    double sum = 0;
    for (const int who : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
        rusage usage{};
        getrusage(who, &usage);
        for (const timeval& time : {usage.ru_utime, usage.ru_stime}) {
            sum += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
        }
    }
    return sum;
}

template <typename Work>
Cost costOf(const Work& work) {
    const double before = processorSeconds();
    const auto start = std::chrono::steady_clock::now();
    work();
    return {std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(),
            processorSeconds() - before};
}

} // namespace corvanta
