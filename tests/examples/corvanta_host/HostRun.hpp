#pragma once

#include "support/Processes.hpp"

namespace corvanta::test {

/// A run of the terminal host that has ended.
struct HostRun {
    int status;
    std::string output;
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
    return {status, host.output(), host.errors()};
}

} // namespace corvanta::test
