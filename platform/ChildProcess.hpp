#pragma once

#include <platform/RunLimits.hpp>
#include <platform/UniqueFd.hpp>

#include <string>
#include <vector>

#include <sys/types.h>

namespace corvanta {

/// A child process that leads a process group of its own and dies with the thread that started it.
///
/// The caller drains the three read ends and, once `exited` is readable, calls `reap`. One thread at a time.
class ChildProcess {
  public:
    struct Options {
        /// What its standard input holds.
        std::string input;
        /// Its memory and the files that it writes; never more than the host's own.
        RunLimits limits;
    };

    /// Starts `program` (a path, or a name looked up in PATH) with `arguments` behind it. Standard output,
    /// standard error and descriptor 3 are pipes to here. Throws std::system_error if it can't.
    ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                 const Options& options);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    /// Kills the group and waits, if the child was not reaped.
    ~ChildProcess();

    /// Sends `signal` to the whole group; nothing after `reap`.
    void signalGroup(int signal) const;

    /// Waits for the child's end, kills what it left in its group, and gives its exit status: 255 after a
    /// signal.
    int reap();

    UniqueFd standardOutput;
    UniqueFd standardError;
    UniqueFd progress;
    /// Readable when the child has ended.
    UniqueFd exited;

  private:
    pid_t pid_ = -1;
};

} // namespace corvanta
