#include <platform/FFmpegKit.hpp>

#include <unistd.h>

/// Runs the ffmpeg command of its command line, and waits to be killed.
int main(int, char** arguments) {
    const auto session = corvanta::FFmpegKit::executeAsync(arguments[1], nullptr, nullptr, nullptr);
    while (true) {
        pause();
    }
}
