#include <platform/PeerWatch.hpp>

#include <platform/BlockedSignals.hpp>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace corvanta {

namespace {

constexpr int pollingMilliseconds = 500;

// The kernel tells that a file is closed a moment before it drops the locks on it.
constexpr int afterCloseMilliseconds = 100;

} // namespace

PeerWatch::PeerWatch(const std::string& peerFile, std::function<void()> onNews)
    : onNews_(std::move(onNews)), events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      stop_(eventfd(0, EFD_CLOEXEC)),
      isTold_(inotify_add_watch(events_.get(), peerFile.c_str(), IN_MODIFY | IN_CLOSE_WRITE) >= 0) {
    if (stop_.get() < 0) {
        throw std::system_error(errno, std::generic_category(), "eventfd");
    }
    const BlockedSignals duringTheStart;
    thread_ = std::thread([this] { listen(); });
}

PeerWatch::~PeerWatch() {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = write(stop_.get(), &one, sizeof one);
    thread_.join();
}

void PeerWatch::listen() {
    std::array<pollfd, 2> sources{pollfd{stop_.get(), POLLIN, 0}, pollfd{events_.get(), POLLIN, 0}};
    bool hasOneGone = true;
    do {
        onNews_();
        const int endless = isTold_ ? -1 : pollingMilliseconds;
        poll(sources.data(), isTold_ ? 2 : 1, hasOneGone ? afterCloseMilliseconds : endless);
        hasOneGone = takeEvents();
    } while (sources[0].revents == 0);
}

// Whether a peer may have gone.
bool PeerWatch::takeEvents() {
    bool hasOneGone = false;
    alignas(inotify_event) std::array<char, 4096> room{};
    for (ssize_t size = 0; (size = read(events_.get(), room.data(), room.size())) > 0;) {
        inotify_event event{};
        for (ssize_t place = 0; place < size; place += static_cast<ssize_t>(sizeof event + event.len)) {
            std::memcpy(&event, room.data() + place, sizeof event);
            hasOneGone = hasOneGone || (event.mask & IN_CLOSE_WRITE) != 0;
            // Somebody has removed the file.
            isTold_ = isTold_ && (event.mask & IN_IGNORED) == 0;
        }
    }
    return hasOneGone;
}

} // namespace corvanta
