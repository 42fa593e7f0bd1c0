#pragma once

#include <string>

namespace corvanta {

/// A command that encodes with a certain encoder; its name is empty if the request doesn't choose one.
struct EncoderRun {
    std::string encoder;
    std::string script;
};

} // namespace corvanta
