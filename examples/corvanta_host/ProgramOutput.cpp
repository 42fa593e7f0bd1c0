#include "ProgramOutput.hpp"

#include <array>
#include <chrono>
#include <csignal>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using PipeClock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience{30};

// Reads to the end; false if that doesn't come in time.
bool readAll(int descriptor, std::string& text) {
    const auto deadline = PipeClock::now() + patience;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - PipeClock::now());
        pollfd waiting{descriptor, POLLIN, 0};
        if (left.count() <= 0 || poll(&waiting, 1, static_cast<int>(left.count())) <= 0) {
            return false;
        }
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0) {
            return count == 0;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

} // namespace

ProgramOutput outputOf(const std::string& program, const std::vector<std::string>& arguments) {
    ProgramOutput output;
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return output;
    }
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDERR_FILENO);
    pid_t child = -1;
    const bool isStarted =
        posix_spawnp(&child, program.c_str(), &actions, nullptr, words.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    if (isStarted) {
        if (!readAll(ends[0], output.text)) {
            kill(child, SIGKILL);
        }
        int status = 0;
        if (waitpid(child, &status, 0) == child && WIFEXITED(status)) {
            output.status = WEXITSTATUS(status);
        }
    }
    close(ends[0]);
    return output;
}
