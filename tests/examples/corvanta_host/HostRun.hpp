#pragma once

#include "support/Processes.hpp"

#include <regex>

namespace corvanta::test {

/// A run of the terminal host that has ended.
struct HostRun {
    int status;
    std::string output;
    /// Without the lines of progress that a run prints every five seconds, on a slow machine.
    std::string errors;

    /// The request that was told of: on standard error, in JSON with the failure.
    std::string id() const {
        const std::string told = errors + output;
        return told.substr(told.find_first_of("0123456789abcdef", told.find("request") + 7), 36);
    }
};

inline HostRun runHost(const std::vector<std::string>& arguments, const Program::Options& options = {}) {
    Program host(CORVANTA_HOST, arguments, options);
    const int status = host.wait();
    const std::regex progress(
        "[a-z]+:?( \\[.{30}\\])? +([0-9]+:[0-9]{2}|[0-9]+ %.{0,30}|reading file [0-9]+ of [0-9]+)\n");
    return {status, host.output(), std::regex_replace(host.errors(), progress, "")};
}

} // namespace corvanta::test
