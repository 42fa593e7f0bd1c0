#pragma once

#include <csignal>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

/// How the program ends, besides 0: told in its help.
namespace exitStatus {

/// An operation failed on its way, or the answer is "no".
inline constexpr int failed = 1;
/// The command line can't be followed.
inline constexpr int wrongUsage = 2;
/// What is asked can't be done with these files or requests: nothing was begun.
inline constexpr int refused = 3;
inline constexpr int notLoggedIn = 4;
/// Cancelled by a signal, whose number is added: 130 for Ctrl-C.
inline constexpr int signalled = 128;

} // namespace exitStatus

/// A command line that can't be followed.
class UsageError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// What this program refuses by itself, before the module is asked.
class Refusal : public std::runtime_error {
  public:
    Refusal(std::string name, const std::string& details) : runtime_error(details), name_(std::move(name)) {}

    /// For scripts, as an error's case is.
    const std::string& name() const { return name_; }

  private:
    std::string name_;
};

/// An end that has been told already: the exit status is left.
class Told : public std::exception {
  public:
    explicit Told(int status) : status_(status) {}

    int status() const { return status_; }
    const char* what() const noexcept override { return "told already"; }

  private:
    int status_;
};

/// A run that Ctrl-C or a termination signal has ended, or somebody else.
class Cancelled : public std::exception {
  public:
    explicit Cancelled(int signal, std::string words = "cancelled")
        : signal_(signal), words_(std::move(words)) {}

    int status() const { return exitStatus::signalled + signal_; }
    const char* what() const noexcept override { return words_.c_str(); }

  private:
    int signal_;
    std::string words_;
};

/// The exit status that tells of a failure.
int statusOf(const std::exception& error);

/// A status other than 0 in one word, for scripts: "failed", "usage", "refused", "notLoggedIn", "cancelled".
const char* nameOfStatus(int status);

/// What a failure is, and what it was about. Only the module's own cases have names that mean something.
struct FailureDescription {
    std::string name;
    std::string details;
};
FailureDescription describe(const std::exception& error);

/// The same in one line for people.
std::string lineOf(const std::exception& error);
