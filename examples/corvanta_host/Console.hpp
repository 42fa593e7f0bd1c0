#pragma once

#include <fmt/format.h>
#include <nlohmann/json_fwd.hpp>

#include <cstdio>
#include <exception>
#include <memory>
#include <string>

/// The terminal as the commands see it: results on standard output, everything else on standard error.
class Console {
  public:
    struct Options {
        bool json = false;
        bool verbose = false;
    };

    /// Takes standard output for results alone: what else the process writes there, ffmpeg's log for one,
    /// goes to standard error when `verbose`, else nowhere. Collects the module's log for the causes of
    /// failures.
    explicit Console(Options options);
    ~Console();

    bool json() const { return options_.json; }
    bool drawsProgress() const;

    template <typename... Arguments>
    void print(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        write(fmt::format(format, std::forward<Arguments>(arguments)...));
    }
    void print(const nlohmann::ordered_json& value);
    /// One line of JSON.
    void printLine(const nlohmann::ordered_json& value);

    /// Tells of a failure in one line: the error's case name, and the cause as far as the log knows it.
    void fail(const std::exception& error);

  private:
    class Causes;

    void write(const std::string& text);

    Options options_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> results_;
    std::shared_ptr<Causes> causes_;
};
