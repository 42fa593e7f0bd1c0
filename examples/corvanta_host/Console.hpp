#pragma once

#include <fmt/format.h>
#include <nlohmann/json_fwd.hpp>

#include <cstdio>
#include <exception>
#include <functional>
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
    /// goes to standard error when `verbose`, else nowhere.
    explicit Console(Options options);
    ~Console();

    bool json() const { return options_.json; }
    bool drawsProgress() const;
    /// Plain lines of progress, for logs.
    bool printsProgress() const { return !options_.json; }

    /// From now on the results and failures of several jobs make one document, a list, for `finish` to write.
    void gatherResults();
    /// Those that are gathered, which end here; an empty list without JSON.
    nlohmann::ordered_json takeResults();
    void finish();

    /// The command's result: the document as JSON, else the text, which ends with its last line.
    void result(const nlohmann::ordered_json& document, const std::string& text);
    /// Where a result lies: the path, or `about` with the path added to it.
    void resultAt(const std::string& path, nlohmann::ordered_json about);
    /// One of a command's results that come as time goes on: a line of either kind.
    void emission(const nlohmann::ordered_json& document, const std::string& text);

    /// A line for people on standard error, which JSON does without.
    void note(const std::string& text) const;
    /// Asks on the terminal; no where there is none.
    static bool confirm(const std::string& question);

    /// Names the request that failures are about from now on: told, or only kept for them.
    void tellRequest(const std::string& id);
    void setRequest(const std::string& id) { request_ = id; }
    /// Names the file, of several, that failures are about from now on; none if it is empty.
    void setFile(const std::string& path) { file_ = path; }

    /// Tells of a failure: in one line on standard error, the error's case name and what it was about, or as
    /// the result in JSON.
    void fail(const std::exception& error);

    /// `listener` is called, on any thread, whenever the module begins to probe a file.
    void listenToProbes(std::function<void()> listener);

  private:
    class LogSink;

    void write(const std::string& text);

    Options options_;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> results_;
    std::shared_ptr<LogSink> log_;
    std::string request_;
    std::string file_;
    std::unique_ptr<nlohmann::ordered_json> gathered_;
};
