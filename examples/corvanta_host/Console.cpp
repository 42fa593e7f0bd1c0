#include "Console.hpp"

#include "Failures.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cerrno>
#include <iostream>
#include <iterator>
#include <mutex>
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

struct Description {
    std::string name;
    std::string details;
};

// The reason says more than the case that holds it.
std::string caseName(const CorvantaSdkVideoError& error) {
    const std::string name = error.what();
    return error.reason() ? name.substr(name.find('(') + 1, name.size() - name.find('(') - 2) : name;
}

Description describe(const std::exception& error) {
    if (const auto* own = dynamic_cast<const CorvantaSdkVideoError*>(&error)) {
        return {caseName(*own), own->details()};
    }
    if (const auto* platform = dynamic_cast<const PlatformError*>(&error)) {
        return {platform->domain(), detailsOf(error)};
    }
    if (const auto* coded = dynamic_cast<const CodedError*>(&error)) {
        return {coded->what(), coded->details()};
    }
    if (const auto* refusal = dynamic_cast<const Refusal*>(&error)) {
        return {refusal->name(), refusal->what()};
    }
    return {dynamic_cast<const Cancelled*>(&error) != nullptr    ? "cancelled"
            : dynamic_cast<const UsageError*>(&error) != nullptr ? "usage"
                                                                 : "failure",
            error.what()};
}

// Only the module's own case names mean something to people.
std::string lineOf(const std::exception& error) {
    const auto [name, details] = describe(error);
    const bool isPlain = dynamic_cast<const CodedError*>(&error) == nullptr ||
                         dynamic_cast<const PlatformError*>(&error) != nullptr;
    std::string line = details.empty() ? name : isPlain ? details : name + ": " + details;
    std::ranges::replace(line, '\n', ' ');
    return line;
}

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
}

Console::~Console() = default;

bool Console::drawsProgress() const { return !options_.verbose && isatty(STDERR_FILENO) != 0; }

void Console::print(const Json& value) { write(dumped(value, 2)); }

void Console::printLine(const Json& value) { write(dumped(value, -1)); }

void Console::printPath(const std::string& path, const Json& about) {
    if (options_.json) {
        Json result = about;
        result["path"] = path;
        print(result);
    } else {
        write(path + '\n');
    }
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

void Console::fail(const std::exception& error) const {
    if (!options_.json) {
        fmt::print(stderr, "corvanta_host: {}\n", lineOf(error));
        return;
    }
    const auto [name, details] = describe(error);
    Json told = {{"name", name}, {"details", details}};
    if (!request_.empty()) {
        told["request"] = request_;
    }
    fmt::print(stderr, "{}", dumped(Json{{"error", told}}, 2));
}

void Console::listenToProbes(std::function<void()> listener) { log_->listen(std::move(listener)); }

void Console::write(const std::string& text) {
    if (!results_ || std::fwrite(text.data(), 1, text.size(), results_.get()) != text.size() ||
        std::fflush(results_.get()) != 0) {
        throw std::system_error(errno, std::generic_category(), "standard output");
    }
}
