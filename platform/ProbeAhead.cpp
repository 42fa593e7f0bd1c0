#include <platform/ProbeAhead.hpp>

#include <platform/InProcessProbe.hpp>
#include <platform/SessionRunner.hpp>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <stop_token>
#include <thread>
#include <utility>

namespace corvanta {

namespace {

struct Row {
    explicit Row(std::vector<std::string> names) : files(std::move(names)) {}

    const std::vector<std::string> files;
    std::atomic<std::size_t> next = 0;
};

void probeRow(Row& row, const std::stop_token& stop) {
    for (std::size_t at = 0; !stop.stop_requested() && (at = row.next++) < row.files.size();) {
        rememberProbe(row.files[at], stop);
    }
}

} // namespace

ProbeAhead::ProbeAhead(std::vector<std::string> files) {
    // One by one is as fast for a single file, and on a single processor.
    const std::size_t processors = std::thread::hardware_concurrency();
    if (files.size() < 2 || processors < 2) {
        return;
    }
    std::erase_if(files, isProbeRemembered);
    constexpr std::size_t enough = 4;
    const std::size_t readers = std::min({files.size(), processors, enough});
    const auto row = std::make_shared<Row>(std::move(files));
    for (std::size_t reader = 0; reader < readers; ++reader) {
        CommandPlan plan;
        plan.answer = [row](const std::stop_token& stop) -> std::optional<std::string> {
            probeRow(*row, stop);
            return "";
        };
        plan.answering = CommandPlan::Answering::lasting;
        sessions_.push_back(
            SessionRunner::shared().run(SessionRunner::Program::none, std::move(plan))->getSessionId());
    }
}

ProbeAhead::~ProbeAhead() {
    for (const std::int64_t session : sessions_) {
        SessionRunner::shared().cancel(session);
    }
}

} // namespace corvanta
