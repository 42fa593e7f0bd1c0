#pragma once

#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <unistd.h>

namespace corvanta::test {

/// What a program that will be killed notes of its work. One write per line, so that a line is there as a
/// whole or not at all. Safe from any thread.
class Journal {
  public:
    explicit Journal(const char* path)
        : descriptor_(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600)) {}

    void add(const std::string& line) const {
        const std::string text = line + '\n';
        if (write(descriptor_, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
            std::abort();
        }
    }

  private:
    int descriptor_;
};

} // namespace corvanta::test
