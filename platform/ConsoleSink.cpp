#include <platform/ConsoleSink.hpp>

#include <platform/NeverDestroyed.hpp>

#include <iostream>
#include <mutex>

namespace corvanta {

namespace {

struct Console {
    std::mutex mutex;
    ConsoleSink sink = standardOutputSink();
};

Console& console() {
    static NeverDestroyed<Console> shared;
    return *shared;
}

} // namespace

void setConsoleSink(ConsoleSink sink) {
    const std::lock_guard lock(console().mutex);
    console().sink.swap(sink);
}

ConsoleSink standardOutputSink() {
    return [](const std::string& line) { std::cout << line + '\n' << std::flush; };
}

void printToConsole(const std::string& line) {
    const std::lock_guard lock(console().mutex);
    if (console().sink) {
        console().sink(line);
    }
}

} // namespace corvanta
