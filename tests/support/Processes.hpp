#pragma once

#include "support/MediaFixtures.hpp"
#include "support/ScopedVariable.hpp"

#include <cstddef>
#include <functional>
#include <map>

#include <sys/types.h>

/// Programs that tests run, programs that stand in for ffmpeg, and what the kernel tells of processes.
namespace corvanta::test {

/// Waits until `condition` holds; false if it doesn't for all `patience`.
bool eventually(const std::function<bool()>& condition);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, std::string_view contents);

/// A program that was started, with its output in files. Killed and waited for when the object goes.
class Program {
  public:
    struct Options {
        /// Added to the environment.
        std::map<std::string, std::string> environment = {};
        /// Absent: where the test runs.
        std::string workingDirectory = {};
        /// Absent: kept for `output`. Else the file's name, "-" for a closed descriptor.
        std::string standardOutput = {};
    };

    /// A name without a slash is looked for as a shell does.
    Program(const std::string& path, const std::vector<std::string>& arguments, const Options& options);
    Program(const std::string& path, const std::vector<std::string>& arguments)
        : Program(path, arguments, Options{}) {}
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();

    pid_t pid() const { return pid_; }
    void signal(int number) const;

    /// Waits for the end and gives the exit status, or the signal's number below zero.
    int wait();

    /// What has been written so far.
    std::string output() const { return readFile(directory_.file("out")); }
    std::string errors() const { return readFile(directory_.file("err")); }

  private:
    TemporaryDirectory directory_;
    pid_t pid_ = -1;
    int status_ = 0;
};

/// A shell script that is run in place of ffmpeg or ffprobe as long as the object lives.
class FakeProgram {
  public:
    /// `variable` is CORVANTA_FFMPEG or CORVANTA_FFPROBE. In the script $here is a directory of its own.
    FakeProgram(std::string variable, std::string_view script);

    /// A path in the script's directory.
    std::string file(std::string_view name) const { return directory_.file(name); }

  private:
    TemporaryDirectory directory_;
    ScopedVariable variable_;
};

/// Whether the process is there and no zombie.
bool isAlive(pid_t process);
/// Every process that was started with `mark` in its environment, zombies aside.
std::vector<pid_t> processesWith(const std::string& mark);
/// The direct children of a process, zombies included.
std::vector<pid_t> childrenOf(pid_t process);
/// How many descriptors this process has open.
std::size_t openDescriptors();
/// The highest resident memory of this process since `resetPeakMemory`, in bytes.
std::size_t peakMemory();
void resetPeakMemory();

/// False under a sanitizer, which keeps freed memory.
constexpr bool memoryIsOurs =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    false;
#else
    true;
#endif

} // namespace corvanta::test
