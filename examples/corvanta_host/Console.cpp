#include "Console.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <iterator>
#include <mutex>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using namespace corvanta;

/// Remembers the last error that the module and ffmpeg have told of.
class Console::Causes : public SharedCorvantaSdkLogSink {
  public:
    explicit Causes(bool verbose) : verbose_(verbose) {}

    void addLog(const SharedCorvantaSdkLog& record) override {
        const std::lock_guard lock(mutex_);
        // A failed probe is logged at info level.
        if (record.severity == SharedCorvantaSdkLogSeverity::error || record.message.starts_with("Error ")) {
            module_ = record.message;
        }
        if (verbose_) {
            fmt::print(stderr, "{}: {}\n", record.tag, record.message);
        }
    }

    void addLine(const std::string& line) {
        const std::lock_guard lock(mutex_);
        ffmpeg_ = line;
    }

    std::string text() const {
        const std::lock_guard lock(mutex_);
        std::string text;
        for (const std::string& cause : {module_, ffmpeg_}) {
            if (!cause.empty()) {
                text += (text.empty() ? "" : "; ") + cause;
            }
        }
        return text;
    }

  private:
    const bool verbose_;
    mutable std::mutex mutex_;
    std::string module_;
    std::string ffmpeg_;
};

Console::Console(Options options)
    : options_(options), results_(nullptr, &std::fclose), causes_(std::make_shared<Causes>(options.verbose)) {
    if (const int descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0); descriptor >= 0) {
        results_.reset(fdopen(descriptor, "w"));
    }
    if (options.verbose) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    } else if (const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
        FFmpegKitConfig::setLogLevel("error");
    }
    SharedCorvantaSdkCommonKt::sdk_common().setLog(causes_);
    FFmpegKitConfig::enableLogCallback(
        [causes = causes_](const Log& log) { causes->addLine(log.getMessage()); });
}

Console::~Console() { FFmpegKitConfig::enableLogCallback(nullptr); }

bool Console::drawsProgress() const { return isatty(STDERR_FILENO) != 0; }

void Console::print(const nlohmann::ordered_json& value) {
    write(value.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n');
}

void Console::printLine(const nlohmann::ordered_json& value) {
    write(value.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + '\n');
}

void Console::fail(const std::exception& error) {
    const auto* coded = dynamic_cast<const CodedError*>(&error);
    const std::string cause =
        coded != nullptr && !coded->details().empty() ? coded->details() : causes_->text();
    fmt::print(stderr, "corvanta_host: {}{}\n", error.what(), cause.empty() ? "" : ": " + cause);
}

void Console::write(const std::string& text) {
    if (!results_ || std::fwrite(text.data(), 1, text.size(), results_.get()) != text.size() ||
        std::fflush(results_.get()) != 0) {
        throw std::system_error(errno, std::generic_category(), "standard output");
    }
}
