#include <platform/RunLine.hpp>

#include <utility>

namespace corvanta {

void RunLine::setLimit(std::size_t limit) {
    limit_ = limit;
    advance();
}

void RunLine::enter(std::int64_t id, std::shared_ptr<CommandRun> run) {
    waiting_.emplace(id, std::move(run));
    advance();
}

void RunLine::cancel(std::int64_t id) {
    if (const auto running = running_.find(id); running != running_.end()) {
        if (const auto run = running->second.lock()) {
            run->cancel();
        }
    } else if (const auto waiting = waiting_.extract(id)) {
        waiting.mapped()->cancel();
        waiting.mapped()->start();
    }
}

void RunLine::cancelAll() {
    while (!waiting_.empty()) {
        cancel(waiting_.begin()->first);
    }
    for (const auto& [id, run] : running_) {
        cancel(id);
    }
}

void RunLine::leave(std::int64_t id) {
    running_.erase(id);
    advance();
}

void RunLine::putBack(std::int64_t id) {
    if (const auto running = running_.extract(id)) {
        waiting_.emplace(id, running.mapped().lock());
    }
}

void RunLine::advance() {
    while (running_.size() < limit_ && !waiting_.empty()) {
        const auto next = waiting_.extract(waiting_.begin());
        running_.emplace(next.key(), next.mapped());
        next.mapped()->start();
    }
}

} // namespace corvanta
