#pragma once

#include <string>

namespace corvanta {

/// Which environment the host was built for. Set `environment` before the module's first use.
struct CI {
    inline static std::string environment = "PROD";

    static bool isRC() { return environment == "RC"; }
    static bool isProd() { return environment == "PROD"; }
    static bool isBeta() { return environment == "BETA"; }
};

} // namespace corvanta
