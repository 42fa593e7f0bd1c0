#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <system_error>

/// The stand-in for the maker's common library: the login state and the log, both replaceable by the host.
namespace corvanta {

enum class SharedCorvantaSdkLogSeverity { info, error };

enum class SharedCorvantaSdkLogModule { video };

struct SharedCorvantaSdkLog {
    std::string tag;
    std::string message;
    SharedCorvantaSdkLogSeverity severity;
    SharedCorvantaSdkLogModule module;
    std::string moduleVersion;
    /// Of a failure: what it was about, in words. Often empty.
    std::string details = {};
};

/// Who is logged in. Implementations are called from any thread.
class SharedCorvantaSdkAuth {
  public:
    virtual ~SharedCorvantaSdkAuth() = default;

    /// The answer, or nothing together with an error.
    virtual std::optional<bool> isAuthenticated(std::error_code& error) = 0;
};

/// A login state that never changes.
class SharedCorvantaSdkFixedAuth : public SharedCorvantaSdkAuth {
  public:
    explicit SharedCorvantaSdkFixedAuth(bool authenticated) : authenticated_(authenticated) {}

    std::optional<bool> isAuthenticated(std::error_code&) override { return authenticated_; }

  private:
    bool authenticated_;
};

/// Where log records go. Implementations are called from any thread and return at once.
class SharedCorvantaSdkLogSink {
  public:
    virtual ~SharedCorvantaSdkLogSink() = default;

    virtual void addLog(const SharedCorvantaSdkLog& record) = 0;
};

/// The library's singleton. Safe from any thread; a replaced part lives until its last caller is done with
/// it. It is never destroyed, nor is what it holds when the process ends: a sink that writes late is to be
/// replaced by then.
class SharedCorvantaSdkCommon {
  public:
    /// At first nobody is logged in, and records go to spdlog's default logger if the host has set one with a
    /// name, else to standard error at the level of spdlog's own.
    SharedCorvantaSdkCommon();

    std::shared_ptr<SharedCorvantaSdkAuth> auth() const;
    std::shared_ptr<SharedCorvantaSdkLogSink> log() const;

    /// Null puts the first state back.
    void setAuth(std::shared_ptr<SharedCorvantaSdkAuth> auth);
    void setLog(std::shared_ptr<SharedCorvantaSdkLogSink> log);

  private:
    mutable std::mutex mutex_;
    std::shared_ptr<SharedCorvantaSdkAuth> auth_;
    std::shared_ptr<SharedCorvantaSdkLogSink> log_;
};

namespace SharedCorvantaSdkCommonKt {

SharedCorvantaSdkCommon& sdk_common();

} // namespace SharedCorvantaSdkCommonKt

} // namespace corvanta
