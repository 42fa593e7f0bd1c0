#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace corvanta {

/// Probes files in process, several at once, before FFprobeKit is asked about them one by one: what it is
/// asked then is known already, or about to be. Only a hint, which changes no answer and no order of answers;
/// what can't be answered in process, or is too young to be remembered, is left alone.
class ProbeAhead {
  public:
    /// `files` as the probe commands will name them.
    explicit ProbeAhead(std::vector<std::string> files);
    ProbeAhead(const ProbeAhead&) = delete;
    ProbeAhead& operator=(const ProbeAhead&) = delete;
    /// Asks what is not done yet to end, and doesn't wait.
    ~ProbeAhead();

  private:
    std::vector<std::int64_t> sessions_;
};

} // namespace corvanta
