#pragma once

#include <exception>
#include <string>
#include <utility>

namespace corvanta {

/// An error with a domain and a code, from which the platform makes its default description.
class CodedError : public std::exception {
  public:
    CodedError() = default;
    explicit CodedError(std::string details) : details_(std::move(details)) {}

    virtual std::string domain() const = 0;
    virtual int code() const = 0;

    /// What this failure was about, in words: the file, the limit, what ffmpeg said last. Empty where no more
    /// is known than the code. For people and logs alone: it takes part in no comparison and no description.
    const std::string& details() const { return details_; }

  private:
    std::string details_;
};

/// The platform's error record: who failed, and with which code.
///
/// A failed ffmpeg or ffprobe run has the session state's name as domain and the return code as code.
class PlatformError : public CodedError {
  public:
    PlatformError(std::string domain, int code, std::string details = {});

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

/// The error's details, or what it says of itself where it has none: what another error can pass on.
std::string detailsOf(const std::exception& error);

/// Ends the process for a broken invariant: writes `message` to standard error and aborts.
[[noreturn]] void fatalError(const char* message);

} // namespace corvanta
