#include "Console.hpp"

#include "Failures.hpp"
#include "FatalEnd.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <nlohmann/json.hpp>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <iterator>
#include <mutex>
#include <string_view>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

using namespace corvanta;
using Json = nlohmann::ordered_json;

class Console::LogSink : public SharedCorvantaSdkLogSink {
  public:
    explicit LogSink(bool verbose) : verbose_(verbose) {}

    void addLog(const SharedCorvantaSdkLog& record) override {
        if (verbose_) {
            fmt::print(stderr, "{}: {}{}{}\n", record.tag, record.message, record.details.empty() ? "" : " ",
                       record.details);
        }
        if (record.tag == "event_video_get_info" && record.message.starts_with("Get info")) {
            const std::lock_guard lock(mutex_);
            if (onProbe_) {
                onProbe_();
            }
        }
    }

    void listen(std::function<void()> onProbe) {
        const std::lock_guard lock(mutex_);
        onProbe_.swap(onProbe);
    }

  private:
    const bool verbose_;
    std::mutex mutex_;
    std::function<void()> onProbe_;
};

namespace {

std::string dumped(const Json& value, int indentation) {
    return value.dump(indentation, ' ', false, Json::error_handler_t::replace) + '\n';
}

} // namespace

Console::Console(Options options)
    : options_(options), results_(nullptr, &std::fclose), log_(std::make_shared<LogSink>(options.verbose)) {
    if (const int descriptor = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0); descriptor >= 0) {
        results_.reset(fdopen(descriptor, "w"));
    }
    if (options.verbose) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
    } else if (const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC); nowhere >= 0) {
        dup2(nowhere, STDOUT_FILENO);
        close(nowhere);
        setConsoleSink(nullptr);
        FFmpegKitConfig::setLogLevel("error");
    }
    SharedCorvantaSdkCommonKt::sdk_common().setLog(log_);
    endAtFatalErrors(options.json && results_ ? fileno(results_.get()) : -1);
}

Console::~Console() = default;

bool Console::drawsProgress() const {
    const char* terminal = std::getenv("TERM");
    return !options_.verbose && isatty(STDERR_FILENO) != 0 &&
           (terminal == nullptr || std::string_view(terminal) != "dumb");
}

void Console::gatherResults() {
    if (options_.json && !gathered_) {
        gathered_ = std::make_unique<Json>(Json::array());
    }
}

Json Console::takeResults() {
    const auto gathered = std::exchange(gathered_, nullptr);
    return gathered ? *gathered : Json::array();
}

void Console::finish() {
    if (gathered_) {
        write(dumped(*std::exchange(gathered_, nullptr), 2));
    }
}

void Console::result(const Json& document, const std::string& text) {
    if (gathered_) {
        gathered_->push_back(document);
    } else {
        write(options_.json ? dumped(document, 2) : text);
    }
}

void Console::resultAt(const std::string& path, Json about) {
    about["path"] = path;
    result(about, path + '\n');
}

void Console::emission(const Json& document, const std::string& text) {
    write(options_.json ? dumped(document, -1) : text + '\n');
}

void Console::note(const std::string& text) const {
    if (!options_.json) {
        fmt::print(stderr, "{}\n", text);
    }
}

bool Console::confirm(const std::string& question) {
    if (isatty(STDIN_FILENO) == 0 || isatty(STDERR_FILENO) == 0) {
        return false;
    }
    fmt::print(stderr, "{} [y/N] ", question);
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "Y" || answer == "yes";
}

void Console::tellRequest(const std::string& id) {
    request_ = id;
    note("request " + id);
}

void Console::fail(const std::exception& error) {
    if (!options_.json) {
        fmt::print(stderr, "corvanta_host: {}{}\n", file_.empty() ? "" : file_ + ": ", lineOf(error));
        return;
    }
    const auto [name, details] = describe(error);
    Json told = {{"kind", nameOfStatus(statusOf(error))}, {"name", name}, {"details", details}};
    for (const auto& [key, value] : {std::pair("file", file_), {"request", request_}}) {
        if (!value.empty()) {
            told[key] = value;
        }
    }
    const Json document{{"error", told}};
    try {
        result(document, "");
    } catch (const std::system_error&) {
        // It says that nothing can be said there.
        fmt::print(stderr, "{}", dumped(document, 2));
    }
}

void Console::listenToProbes(std::function<void()> listener) { log_->listen(std::move(listener)); }

void Console::write(const std::string& text) {
    if (!results_ || std::fwrite(text.data(), 1, text.size(), results_.get()) != text.size() ||
        std::fflush(results_.get()) != 0) {
        throw std::system_error(errno, std::generic_category(), "standard output");
    }
}
