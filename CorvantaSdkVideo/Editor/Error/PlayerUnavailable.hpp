#pragma once

#include <stdexcept>

namespace corvanta {

/// Nothing can be played on this machine; the text says what to install.
class PlayerUnavailable : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace corvanta
