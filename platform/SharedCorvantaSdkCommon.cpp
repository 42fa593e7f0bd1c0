#include <platform/SharedCorvantaSdkCommon.hpp>

#include <spdlog/spdlog.h>

#include <utility>

namespace corvanta {

namespace {

class SpdlogSink : public SharedCorvantaSdkLogSink {
  public:
    void addLog(const SharedCorvantaSdkLog& record) override {
        const auto level =
            record.severity == SharedCorvantaSdkLogSeverity::error ? spdlog::level::err : spdlog::level::info;
        spdlog::log(level, "[video {}] {}: {}", record.moduleVersion, record.tag, record.message);
    }
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
    static SharedCorvantaSdkCommon common;
    return common;
}

} // namespace corvanta
