#include <platform/PeerFile.hpp>

#include <cerrno>
#include <limits>
#include <random>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace corvanta {

namespace {

// The first bytes are for `tell`.
std::int64_t drawMark() {
    std::random_device source;
    return std::uniform_int_distribution<std::int64_t>(1024,
                                                       std::numeric_limits<std::int64_t>::max() / 2)(source);
}

// The process id of an open file description's lock has to be 0.
flock byteLock(short type, std::int64_t place) {
    flock lock{};
    lock.l_type = type;
    lock.l_whence = SEEK_SET;
    lock.l_start = place;
    lock.l_len = 1;
    return lock;
}

} // namespace

PeerFile::PeerFile(std::string path)
    : path_(std::move(path)), file_(open(path_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)),
      mark_(drawMark()) {
    // Not a lock of the process: that would go as soon as the process closed any descriptor of the file.
    flock lock = byteLock(F_WRLCK, mark_);
    if (file_.get() < 0 || fcntl(file_.get(), F_OFD_SETLK, &lock) != 0) {
        throw std::system_error(errno, std::generic_category(), path_);
    }
}

bool PeerFile::isAlive(std::int64_t mark) const {
    if (mark == mark_ || mark < 0) {
        return mark == mark_;
    }
    flock lock = byteLock(F_WRLCK, mark);
    return fcntl(file_.get(), F_OFD_GETLK, &lock) != 0 || lock.l_type != F_UNLCK;
}

void PeerFile::tell() const noexcept {
    // On a full disk the others hear of this change with the next one.
    [[maybe_unused]] const auto written = pwrite(file_.get(), "\n", 1, 0);
}

} // namespace corvanta
