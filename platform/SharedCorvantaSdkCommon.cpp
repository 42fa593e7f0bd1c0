#include <platform/SharedCorvantaSdkCommon.hpp>

#include <platform/NeverDestroyed.hpp>

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <shared_mutex>
#include <utility>

namespace corvanta {

namespace {

// spdlog destroys its loggers while the process ends: records that come later have nowhere to go.
struct SpdlogLife {
    std::shared_mutex mutex;
    bool ended = false;
};

SpdlogLife& spdlogLife() {
    static NeverDestroyed<SpdlogLife> life;
    return *life;
}

struct SpdlogEnd {
    // spdlog's own static objects are there now, so they go after this one.
    SpdlogEnd() { spdlog::default_logger_raw(); }
    ~SpdlogEnd() {
        const std::lock_guard lock(spdlogLife().mutex);
        spdlogLife().ended = true;
    }
};

class SpdlogSink : public SharedCorvantaSdkLogSink {
  public:
    SpdlogSink() { static const SpdlogEnd end; }

    void addLog(const SharedCorvantaSdkLog& record) override {
        const std::shared_lock lock(spdlogLife().mutex);
        if (spdlogLife().ended) {
            return;
        }
        const auto level =
            record.severity == SharedCorvantaSdkLogSeverity::error ? spdlog::level::err : spdlog::level::info;
        const auto shared = spdlog::default_logger();
        if (!shared || !shared->should_log(level)) {
            return;
        }
        // spdlog's own logger, which no host has named, writes to standard output, and that is the host's.
        const auto& logger = shared->name().empty() ? standardError_ : shared;
        logger->log(level, "[video {}] {}: {}{}{}", record.moduleVersion, record.tag, record.message,
                    record.details.empty() ? "" : " ", record.details);
    }

  private:
    const std::shared_ptr<spdlog::logger> standardError_ = std::make_shared<spdlog::logger>(
        "corvanta-sdk-video", std::make_shared<spdlog::sinks::stderr_color_sink_mt>());
};

} // namespace

SharedCorvantaSdkCommon::SharedCorvantaSdkCommon() {
    setAuth(nullptr);
    setLog(nullptr);
}

std::shared_ptr<SharedCorvantaSdkAuth> SharedCorvantaSdkCommon::auth() const {
    const std::lock_guard lock(mutex_);
    return auth_;
}

std::shared_ptr<SharedCorvantaSdkLogSink> SharedCorvantaSdkCommon::log() const {
    const std::lock_guard lock(mutex_);
    return log_;
}

void SharedCorvantaSdkCommon::setAuth(std::shared_ptr<SharedCorvantaSdkAuth> auth) {
    if (!auth) {
        auth = std::make_shared<SharedCorvantaSdkFixedAuth>(false);
    }
    const std::lock_guard lock(mutex_);
    std::swap(auth_, auth);
}

void SharedCorvantaSdkCommon::setLog(std::shared_ptr<SharedCorvantaSdkLogSink> log) {
    if (!log) {
        log = std::make_shared<SpdlogSink>();
    }
    const std::lock_guard lock(mutex_);
    std::swap(log_, log);
}

SharedCorvantaSdkCommon& SharedCorvantaSdkCommonKt::sdk_common() {
    static NeverDestroyed<SharedCorvantaSdkCommon> common;
    return *common;
}

} // namespace corvanta
