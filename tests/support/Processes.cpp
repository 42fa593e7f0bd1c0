#include "support/Processes.hpp"

#include "support/Patience.hpp"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvanta::test {

namespace fs = std::filesystem;

bool eventually(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const std::string& path, std::string_view contents) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(contents.data(), static_cast<std::streamsize>(contents.size()));
    if (!file.flush()) {
        throw std::runtime_error("can't write " + path);
    }
}

Program::Program(const std::string& path, const std::vector<std::string>& arguments, const Options& options) {
    std::vector<std::string> environment;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        if (!options.environment.contains(text.substr(0, text.find('=')))) {
            environment.push_back(text);
        }
    }
    for (const auto& [name, value] : options.environment) {
        environment.push_back(name + '=' + value);
    }
    const auto pointers = [](std::vector<std::string>& texts) {
        std::vector<char*> result;
        for (std::string& text : texts) {
            result.push_back(text.data());
        }
        result.push_back(nullptr);
        return result;
    };
    std::vector<std::string> words{path};
    words.insert(words.end(), arguments.begin(), arguments.end());

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    const std::string output =
        options.standardOutput.empty() ? directory_.file("out") : options.standardOutput;
    if (output == "-") {
        posix_spawn_file_actions_addclose(&actions, STDOUT_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT, 0600);
    }
    const std::string errors = directory_.file("err");
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, errors.c_str(), O_WRONLY | O_CREAT, 0600);
    if (!options.workingDirectory.empty()) {
        posix_spawn_file_actions_addchdir_np(&actions, options.workingDirectory.c_str());
    }
    const int error = posix_spawnp(&pid_, path.c_str(), &actions, nullptr, pointers(words).data(),
                                   pointers(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), path);
    }
}

Program::~Program() {
    if (pid_ > 0) {
        signal(SIGKILL);
        wait();
    }
}

void Program::signal(int number) const {
    if (pid_ > 0) {
        kill(pid_, number);
    }
}

int Program::wait() {
    if (pid_ > 0) {
        int status = 0;
        while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
        }
        pid_ = -1;
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    return status_;
}

FakeProgram::FakeProgram(std::string variable, std::string_view script)
    : variable_(std::move(variable), directory_.file("program")) {
    writeFile(file("program"),
              "#!/bin/sh\nhere='" + directory_.path().string() + "'\n" + std::string(script));
    chmod(file("program").c_str(), 0700);
}

bool isAlive(pid_t process) {
    const std::string status = readFile("/proc/" + std::to_string(process) + "/stat");
    const std::size_t name = status.rfind(") ");
    return name != std::string::npos && status[name + 2] != 'Z' && status[name + 2] != 'X';
}

std::vector<pid_t> processesWith(const std::string& mark) {
    std::vector<pid_t> found;
    for (const auto& entry : fs::directory_iterator("/proc")) {
        const std::string name = entry.path().filename();
        if (std::ranges::all_of(name, [](unsigned char character) { return std::isdigit(character); }) &&
            readFile(entry.path() / "environ").find(mark) != std::string::npos) {
            found.push_back(std::stoi(name));
        }
    }
    std::erase_if(found, [](pid_t process) { return !isAlive(process); });
    return found;
}

std::vector<pid_t> childrenOf(pid_t process) {
    std::vector<pid_t> children;
    std::error_code ignored;
    for (const auto& task : fs::directory_iterator("/proc/" + std::to_string(process) + "/task", ignored)) {
        std::istringstream list(readFile(task.path() / "children"));
        children.insert(children.end(), std::istream_iterator<pid_t>(list), {});
    }
    return children;
}

std::size_t openDescriptors() {
    // The listing itself needs one.
    const auto count = std::distance(fs::directory_iterator("/proc/self/fd"), fs::directory_iterator());
    return static_cast<std::size_t>(count) - 1;
}

std::size_t peakMemory() {
    std::istringstream status(readFile("/proc/self/status"));
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            std::size_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("no VmHWM in /proc/self/status");
}

void resetPeakMemory() { writeFile("/proc/self/clear_refs", "5"); }

} // namespace corvanta::test
