#include <platform/Errors.hpp>

#include <cstdio>
#include <cstdlib>
#include <system_error>

namespace corvanta {

namespace {

std::string describe(const std::string& domain, int code) {
    return "The operation couldn’t be completed. (" + domain + " error " + std::to_string(code) + ".)";
}

} // namespace

PlatformError::PlatformError(std::string domain, int code)
    : domain_(std::move(domain)), code_(code), text_(domain_ + " error " + std::to_string(code)) {}

std::string localizedDescription(const std::exception& error) {
    if (const auto* coded = dynamic_cast<const CodedError*>(&error)) {
        return describe(coded->domain(), coded->code());
    }
    if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
        return describe(system->code().category().name(), system->code().value());
    }
    return error.what();
}

void fatalError(const char* message) {
    std::fprintf(stderr, "Fatal error: %s\n", message);
    std::abort();
}

} // namespace corvanta
