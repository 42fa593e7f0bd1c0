#include <platform/FFmpegEncoders.hpp>

#include <platform/Cancellation.hpp>
#include <platform/Errors.hpp>
#include <platform/FFmpegPrograms.hpp>
#include <platform/NeverDestroyed.hpp>
#include <platform/SessionRunner.hpp>
#include <platform/SessionWait.hpp>

#include <boost/asio/this_coro.hpp>

#include <map>
#include <mutex>
#include <sstream>

namespace corvanta {

namespace {

using NamesPointer = std::shared_ptr<const EncoderNames>;

// By program, since the host may name another one later.
struct Known {
    std::mutex mutex;
    std::map<std::string, NamesPointer> names;
};

Known& known() {
    static NeverDestroyed<Known> shared;
    return *shared;
}

NamesPointer knownOf(const std::string& program) {
    const std::lock_guard lock(known().mutex);
    const auto found = known().names.find(program);
    return found == known().names.end() ? nullptr : found->second;
}

// A legend, a line of dashes, then a line each: its flags, its name and what it is.
NamesPointer parsed(const std::string& output) {
    auto names = std::make_shared<EncoderNames>();
    std::istringstream lines(output);
    bool isBehindLegend = false;
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string flags;
        std::string name;
        words >> flags >> name;
        if (isBehindLegend && !name.empty()) {
            names->insert(name);
        }
        isBehindLegend = isBehindLegend || flags.starts_with("---");
    }
    return names;
}

} // namespace

Task<NamesPointer> encodersOfFFmpeg() {
    const std::string program = ffmpegProgram();
    if (NamesPointer names = knownOf(program)) {
        co_return names;
    }
    StartSession start = [&program](CompleteCallback onComplete) {
        CommandPlan plan;
        plan.program = program;
        plan.arguments = {"-nostdin", "-hide_banner", "-v", "error", "-encoders"};
        plan.limits.stall = std::chrono::minutes(1);
        plan.keepOutput = true;
        plan.onComplete = std::move(onComplete);
        return SessionRunner::shared().run(SessionRunner::Program::ffprobe, std::move(plan));
    };
    const std::shared_ptr<Session> session = co_await untilEnded(std::move(start));
    const auto returnCode = session->getReturnCode();
    if (!returnCode || !returnCode->isValueSuccess()) {
        throwIfCancelled(co_await boost::asio::this_coro::cancellation_state);
        throw PlatformError(FFmpegKitConfig::sessionStateToString(session->getState()).value_or(""),
                            returnCode ? returnCode->getValue() : ReturnCode::notStarted,
                            session->getFailure().value_or(program + " doesn't tell its encoders"));
    }
    NamesPointer names = parsed(session->getOutput().value_or(""));
    const std::lock_guard lock(known().mutex);
    co_return known().names.try_emplace(program, std::move(names)).first->second;
}

} // namespace corvanta
