#include "FatalEnd.hpp"

#include "Failures.hpp"

#include <csignal>
#include <string_view>

#include <unistd.h>

namespace {

// Read by a signal's handler.
int documentDescriptor = -1;

extern "C" void endAtOnce(int) {
    constexpr std::string_view document =
        "{\n  \"error\": {\n    \"kind\": \"failed\",\n    \"name\": "
        "\"fatalError\",\n    \"details\": \"told on standard error\"\n  }\n}\n";
    if (documentDescriptor >= 0) {
        [[maybe_unused]] const auto written = write(documentDescriptor, document.data(), document.size());
    }
    _exit(exitStatus::failed);
}

} // namespace

void endAtFatalErrors(int resultDescriptor) {
    documentDescriptor = resultDescriptor;
    std::signal(SIGABRT, endAtOnce);
}
