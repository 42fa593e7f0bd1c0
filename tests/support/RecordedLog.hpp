#pragma once

#include <platform/SharedCorvantaSdkCommon.hpp>

namespace corvanta::test {

/// Takes the module's log records, and states who is logged in, as long as the object lives.
class RecordedLog {
  public:
    explicit RecordedLog(bool authenticated = true)
        : RecordedLog(std::make_shared<SharedCorvantaSdkFixedAuth>(authenticated)) {}

    explicit RecordedLog(std::shared_ptr<SharedCorvantaSdkAuth> auth)
        : authBefore_(common().auth()), logBefore_(common().log()) {
        common().setAuth(std::move(auth));
        common().setLog(sink_);
    }
    RecordedLog(const RecordedLog&) = delete;
    RecordedLog& operator=(const RecordedLog&) = delete;
    ~RecordedLog() {
        common().setAuth(authBefore_);
        common().setLog(logBefore_);
    }

    /// "info tag: message" or "error tag: message", each once.
    std::vector<std::string> take() { return sink_->take(); }
    /// The version in the last record.
    std::string version() const { return sink_->version(); }

  private:
    class Sink : public SharedCorvantaSdkLogSink {
      public:
        void addLog(const SharedCorvantaSdkLog& record) override {
            const std::lock_guard lock(mutex_);
            const bool isError = record.severity == SharedCorvantaSdkLogSeverity::error;
            lines_.push_back((isError ? "error " : "info ") + record.tag + ": " + record.message);
            version_ = record.moduleVersion;
        }
        std::vector<std::string> take() {
            const std::lock_guard lock(mutex_);
            return std::exchange(lines_, {});
        }
        std::string version() const {
            const std::lock_guard lock(mutex_);
            return version_;
        }

      private:
        mutable std::mutex mutex_;
        std::vector<std::string> lines_;
        std::string version_;
    };

    static SharedCorvantaSdkCommon& common() { return SharedCorvantaSdkCommonKt::sdk_common(); }

    std::shared_ptr<Sink> sink_ = std::make_shared<Sink>();
    std::shared_ptr<SharedCorvantaSdkAuth> authBefore_;
    std::shared_ptr<SharedCorvantaSdkLogSink> logBefore_;
};

} // namespace corvanta::test
