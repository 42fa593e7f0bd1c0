#pragma once

#include <fmt/format.h>
#include <nlohmann/json_fwd.hpp>

#include <cstdio>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <utility>

/// The terminal as the commands see it: results on standard output, everything else on standard error.
class Console {
  public:
    struct Options {
        bool json = false;
        bool verbose = false;
    };

    /// Takes standard output for results alone: what else the process writes there, ffmpeg's log for one,
    /// goes to standard error when `verbose`, else nowhere.
    explicit Console(Options options);
    ~Console();

    bool json() const { return options_.json; }
    bool drawsProgress() const;
    /// Plain lines of progress, for logs.
    bool printsProgress() const { return !options_.json; }

    template <typename... Arguments>
    void print(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        write(fmt::format(format, std::forward<Arguments>(arguments)...));
    }
    void print(const nlohmann::ordered_json& value);
    /// One line of JSON.
    void printLine(const nlohmann::ordered_json& value);
    /// Where a result lies: the path, or `about` with the path added to it.
    void printPath(const std::string& path, const nlohmann::ordered_json& about);

    /// A line for people on standard error, which JSON does without.
    void note(const std::string& text) const;
    /// Asks on the terminal; no where there is none.
    static bool confirm(const std::string& question);

    /// Names the request that failures are about from now on: told, or only kept for them.
    void tellRequest(const std::string& id);
    void setRequest(const std::string& id) { request_ = id; }

    /// Tells of a failure in one line: the error's case name, and what it was about.
    void fail(const std::exception& error) const;

    /// `listener` is called, on any thread, whenever the module begins to probe a file.
    void listenToProbes(std::function<void()> listener);

  private:
    class LogSink;

    void write(const std::string& text);

    Options options_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> results_;
    std::shared_ptr<LogSink> log_;
    std::string request_;
};
