#pragma once

#include <exception>
#include <string>

namespace corvanta {

/// An error with a domain and a code, from which the platform makes its default description.
class CodedError : public std::exception {
  public:
    virtual std::string domain() const = 0;
    virtual int code() const = 0;
};

/// The platform's error record: who failed, and with which code.
///
/// A failed ffmpeg or ffprobe run has the session state's name as domain and the return code as code.
class PlatformError : public CodedError {
  public:
    PlatformError(std::string domain, int code);

    std::string domain() const override { return domain_; }
    int code() const override { return code_; }

    /// "{domain} error {code}"
    const char* what() const noexcept override { return text_.c_str(); }

    friend bool operator==(const PlatformError& left, const PlatformError& right) {
        return left.code_ == right.code_ && left.domain_ == right.domain_;
    }

  private:
    std::string domain_;
    int code_;
    std::string text_;
};

/// The default description of an error for people: "The operation couldn’t be completed. ({domain} error
/// {code}.)". An error without domain and code (one of a library) speaks for itself.
std::string localizedDescription(const std::exception& error);

/// Ends the process for a broken invariant: writes `message` to standard error and aborts.
[[noreturn]] void fatalError(const char* message);

} // namespace corvanta
