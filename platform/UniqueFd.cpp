#include <platform/UniqueFd.hpp>

#include <utility>

#include <unistd.h>

namespace corvanta {

UniqueFd& UniqueFd::operator=(UniqueFd&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

UniqueFd::~UniqueFd() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

int UniqueFd::release() { return std::exchange(descriptor_, -1); }

} // namespace corvanta
