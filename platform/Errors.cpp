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

PlatformError::PlatformError(std::string domain, int code, std::string details)
    : CodedError(std::move(details)), domain_(std::move(domain)), code_(code),
      text_(domain_ + " error " + std::to_string(code)) {}

std::string localizedDescription(const std::exception& error) {
    if (const auto* coded = dynamic_cast<const CodedError*>(&error)) {
        return describe(coded->domain(), coded->code());
    }
    if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
        return describe(system->code().category().name(), system->code().value());
    }
    return error.what();
}

std::string detailsOf(const std::exception& error) {
    const auto* coded = dynamic_cast<const CodedError*>(&error);
    return coded != nullptr && !coded->details().empty() ? coded->details() : error.what();
}

void fatalError(const char* message) {
    std::fprintf(stderr, "Fatal error: %s\n", message);
    std::abort();
}

} // namespace corvanta
