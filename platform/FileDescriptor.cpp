#include <platform/FileDescriptor.hpp>

#include <utility>

#include <unistd.h>

namespace corvanta {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (descriptor_ >= 0) {
        close(descriptor_);
    }
}

int FileDescriptor::release() { return std::exchange(descriptor_, -1); }

} // namespace corvanta
