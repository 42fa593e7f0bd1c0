#pragma once

#include "utils/assertion.hpp"

#include <exception>
#include <string>

namespace TALVO::UTILS {

/// A failure that a caller can cause: a bad model file, a wrong session.
class TalvoException : public std::exception {
  public:
    TalvoException(char const* message, char const* file, int line, char const* function)
        : TalvoException(std::string(message), file, line, function) {}

    TalvoException(std::string message, char const* file, int line, char const* function)
        : message_(std::move(message)), file_(file), function_(function), line_(line) {
        message_ = "Talvo_Exception in file " + file_ + " Line " + std::to_string(line_) + " Function " +
                   function_ + "\n messege " + message_;
    }

    char const* what() const noexcept override { return message_.c_str(); }

  private:
    std::string message_;
    std::string file_;
    std::string function_;
    int line_;
};

} // namespace TALVO::UTILS

#define TALVO_THROW(message)                                                                                 \
    throw ::TALVO::UTILS::TalvoException(message, ::TALVO::UTILS::sourceStem(__FILE__).c_str(), __LINE__,    \
                                         __func__)
