#include <platform/ChildProcess.hpp>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvanta {

namespace {

constexpr int progressDescriptor = 3;

[[noreturn]] void fail(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

FileDescriptor checked(int descriptor, const char* what) {
    if (descriptor < 0) {
        fail(errno, what);
    }
    return FileDescriptor(descriptor);
}

// A host that has closed its standard descriptors would otherwise hand out one of the numbers that the
// child's pipes are copied to.
FileDescriptor aboveTargets(FileDescriptor descriptor) {
    return descriptor.get() > progressDescriptor
               ? std::move(descriptor)
               : checked(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, progressDescriptor + 1), "fcntl");
}

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail(errno, "pipe");
    }
    Pipe made{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    made.writeEnd = aboveTargets(std::move(made.writeEnd));
    return made;
}

std::string findProgram(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return program;
    }
    const char* path = std::getenv("PATH");
    std::istringstream directories(path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string directory; std::getline(directories, directory, ':');) {
        std::string candidate = (directory.empty() ? "." : directory) + '/' + program;
        if (access(candidate.c_str(), X_OK) == 0) {
            return candidate;
        }
    }
    fail(ENOENT, program);
}

// Runs in the child, which still shares the parent's memory: system calls only.
[[noreturn]] void becomeProgram(const char* program, char* const* arguments,
                                const std::array<int, 4>& descriptors, pid_t parent, volatile int& error) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(EXIT_FAILURE);
    }
    for (int target = 0; target < static_cast<int>(descriptors.size()); ++target) {
        if (dup2(descriptors[static_cast<std::size_t>(target)], target) < 0) {
            error = errno;
            _exit(EXIT_FAILURE);
        }
    }
    close_range(progressDescriptor + 1, ~0U, 0);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    execve(program, arguments, environ);
    error = errno;
    _exit(EXIT_FAILURE);
}

} // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

int FileDescriptor::release() { return std::exchange(descriptor_, -1); }

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments) {
    const std::string path = findProgram(program);
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        if (argument.find('\0') != std::string::npos) {
            fail(EINVAL, "argument");
        }
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    const FileDescriptor input = aboveTargets(checked(open("/dev/null", O_RDONLY | O_CLOEXEC), "/dev/null"));
    Pipe output = makePipe();
    Pipe log = makePipe();
    Pipe statistics = makePipe();
    const std::array<int, 4> descriptors{input.get(), output.writeEnd.get(), log.writeEnd.get(),
                                         statistics.writeEnd.get()};

    // vfork: copying the page tables of a large host would cost more than the rest of the start.
    const pid_t parent = getpid();
    volatile int error = 0;
    const pid_t child = vfork();
    if (child == 0) {
        becomeProgram(path.c_str(), argv.data(), descriptors, parent, error);
    }
    if (child < 0) {
        fail(errno, "vfork");
    }
    pid_ = child;
    // Called by number: the C library of Debian 12 declares its wrapper for C alone.
    exited = FileDescriptor(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    if (error != 0 || exited.get() < 0) {
        const int reason = error != 0 ? error : errno;
        signalGroup(SIGKILL);
        reap();
        fail(reason, path);
    }
    standardOutput = std::move(output.readEnd);
    standardError = std::move(log.readEnd);
    progress = std::move(statistics.readEnd);
}

ChildProcess::~ChildProcess() {
    if (pid_ > 0) {
        signalGroup(SIGKILL);
        reap();
    }
}

void ChildProcess::signalGroup(int signal) const {
    if (pid_ > 0) {
        kill(-pid_, signal);
    }
}

int ChildProcess::reap() {
    siginfo_t ended{};
    while (waitid(P_PID, static_cast<id_t>(pid_), &ended, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
    }
    // As long as the child isn't reaped its group can't be anybody else's.
    signalGroup(SIGKILL);
    while (waitid(P_PID, static_cast<id_t>(pid_), &ended, WEXITED) != 0 && errno == EINTR) {
    }
    pid_ = -1;
    constexpr int diedBySignal = 255;
    return ended.si_code == CLD_EXITED ? ended.si_status : diedBySignal;
}

} // namespace corvanta
