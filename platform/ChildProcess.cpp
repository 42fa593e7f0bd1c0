#include <platform/ChildProcess.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace corvanta {

namespace {

// Where a failed start writes its reason, behind the progress at 3; closed by a start that succeeds.
constexpr int errorDescriptor = 4;

[[noreturn]] void fail(int error, const std::string& what) {
    throw std::system_error(error, std::generic_category(), what);
}

UniqueFd checked(int descriptor, const char* what) {
    if (descriptor < 0) {
        fail(errno, what);
    }
    return UniqueFd(descriptor);
}

// A host that has closed its standard descriptors would otherwise hand out one of the numbers that the
// child's pipes are copied to.
UniqueFd aboveTargets(UniqueFd descriptor) {
    return descriptor.get() > errorDescriptor
               ? std::move(descriptor)
               : checked(fcntl(descriptor.get(), F_DUPFD_CLOEXEC, errorDescriptor + 1), "fcntl");
}

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

Pipe makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        fail(errno, "pipe");
    }
    Pipe made{UniqueFd(ends[0]), UniqueFd(ends[1])};
    made.writeEnd = aboveTargets(std::move(made.writeEnd));
    return made;
}

UniqueFd inputOf(const std::string& bytes) {
    if (bytes.empty()) {
        return checked(open("/dev/null", O_RDONLY | O_CLOEXEC), "/dev/null");
    }
    // In memory, whole before the program starts: nobody has to feed it, and nothing stays behind.
    UniqueFd input = checked(memfd_create("input", MFD_CLOEXEC), "memfd_create");
    for (std::size_t written = 0; written < bytes.size();) {
        const ssize_t count = write(input.get(), bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno != EINTR) {
            fail(errno, "write");
        }
        written += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
    }
    if (lseek(input.get(), 0, SEEK_SET) != 0) {
        fail(errno, "lseek");
    }
    return input;
}

bool isProgram(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string findProgram(const std::string& program) {
    if (program.find('/') != std::string::npos) {
        return program;
    }
    const char* path = std::getenv("PATH");
    std::istringstream directories(path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin");
    for (std::string directory; std::getline(directories, directory, ':');) {
        std::string candidate = (directory.empty() ? "." : directory) + '/' + program;
        if (isProgram(candidate)) {
            return candidate;
        }
    }
    fail(ENOENT, program);
}

// Every input is a descriptor; the soft limit is for programs that call select, which these don't.
void allowManyDescriptors() {
    rlimit descriptors{};
    if (getrlimit(RLIMIT_NOFILE, &descriptors) == 0) {
        descriptors.rlim_cur = descriptors.rlim_max;
        setrlimit(RLIMIT_NOFILE, &descriptors);
    }
}

// Only down: a host's own limit holds, and what it could raise the child may not.
bool lower(__rlimit_resource resource, const std::optional<std::uint64_t>& bytes) {
    rlimit now{};
    if (!bytes) {
        return true;
    }
    if (getrlimit(resource, &now) != 0) {
        return false;
    }
    const rlim_t limit = std::min<rlim_t>(*bytes, now.rlim_max);
    const rlimit lowered{std::min(limit, now.rlim_cur), limit};
    return setrlimit(resource, &lowered) == 0;
}

// Runs in the child, which may share the parent's memory: system calls only.
[[noreturn]] void becomeProgram(const char* program, char* const* arguments,
                                const std::array<int, 5>& descriptors, const RunLimits& limits,
                                pid_t parent) {
    setpgid(0, 0);
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) {
        _exit(EXIT_FAILURE);
    }
    bool ready = true;
    for (int target = 0; target < static_cast<int>(descriptors.size()); ++target) {
        ready = ready && dup2(descriptors[static_cast<std::size_t>(target)], target) == target;
    }
    fcntl(errorDescriptor, F_SETFD, FD_CLOEXEC);
    close_range(errorDescriptor + 1, ~0U, 0);
    // What the host ignores must not be ignored by the program, and the host's handlers must not run here.
    for (int signal = 1; signal < NSIG; ++signal) {
        struct sigaction byDefault {};
        byDefault.sa_handler = SIG_DFL;
        // Killed at its limit the program could neither tell the reason nor close the file.
        if (signal == SIGXFSZ && limits.fileSize) {
            byDefault.sa_handler = SIG_IGN;
        }
        sigaction(signal, &byDefault, nullptr);
    }
    allowManyDescriptors();
    ready = ready && lower(RLIMIT_AS, limits.memory) && lower(RLIMIT_FSIZE, limits.fileSize);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    if (ready) {
        execve(program, arguments, environ);
    }
    const int error = errno;
    [[maybe_unused]] const ssize_t written = write(errorDescriptor, &error, sizeof error);
    _exit(EXIT_FAILURE);
}

// Waits until the child has become the program; gives 0 then, else what kept it from that. Where vfork is
// real the child has decided by now: the patience is for tools that put fork in its place, its end for a host
// that forked meanwhile and so holds the pipe open.
int startError(const UniqueFd& source) {
    constexpr int patienceMillis = 1000;
    pollfd decided{source.get(), POLLIN, 0};
    int error = 0;
    const bool failed = poll(&decided, 1, patienceMillis) > 0 &&
                        read(source.get(), &error, sizeof error) == static_cast<ssize_t>(sizeof error);
    return failed ? error : 0;
}

} // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const Options& options) {
    const std::string path = findProgram(program);
    std::vector<char*> argv{const_cast<char*>(program.c_str())};
    for (const std::string& argument : arguments) {
        if (argument.find('\0') != std::string::npos) {
            fail(EINVAL, "argument");
        }
        argv.push_back(const_cast<char*>(argument.c_str()));
    }
    argv.push_back(nullptr);

    const UniqueFd input = aboveTargets(inputOf(options.input));
    Pipe output = makePipe();
    Pipe log = makePipe();
    Pipe statistics = makePipe();
    Pipe start = makePipe();
    const std::array<int, 5> descriptors{input.get(), output.writeEnd.get(), log.writeEnd.get(),
                                         statistics.writeEnd.get(), start.writeEnd.get()};

    // vfork: copying the page tables of a large host would cost more than the rest of the start.
    const pid_t parent = getpid();
    const pid_t child = vfork();
    if (child == 0) {
        becomeProgram(path.c_str(), argv.data(), descriptors, options.limits, parent);
    }
    if (child < 0) {
        fail(errno, "vfork");
    }
    pid_ = child;
    // Called by number: the C library of Debian 12 declares its wrapper for C alone.
    exited = UniqueFd(static_cast<int>(syscall(SYS_pidfd_open, child, 0)));
    const int noHandle = exited.get() < 0 ? errno : 0;
    start.writeEnd = UniqueFd();
    const int error = startError(start.readEnd);
    if (error != 0 || noHandle != 0) {
        signalGroup(SIGKILL);
        reap();
        fail(error != 0 ? error : noHandle, path);
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
