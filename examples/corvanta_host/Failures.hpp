#pragma once

#include <csignal>
#include <exception>
#include <stdexcept>
#include <string>
#include <utility>

/// How the program ends, besides 0: told in its help.
namespace exitStatus {

/// An operation failed or was refused, or the answer is "no".
inline constexpr int failed = 1;
/// The command line can't be followed.
inline constexpr int wrongUsage = 2;
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

/// Some of several runs have failed, each of which has been told.
class SomeFailed : public std::exception {
  public:
    const char* what() const noexcept override { return "some of several runs have failed"; }
};

/// A run that Ctrl-C or a termination signal has ended.
class Cancelled : public std::exception {
  public:
    explicit Cancelled(int signal) : signal_(signal) {}

    int status() const { return exitStatus::signalled + signal_; }
    const char* what() const noexcept override { return "cancelled"; }

  private:
    int signal_;
};
