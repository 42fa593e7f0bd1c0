#include "Failures.hpp"

#include <CorvantaSdkVideo/CorvantaSdkVideo.hpp>

#include <algorithm>

using namespace corvanta;

namespace {

// The reason says more than the case that holds it.
std::string caseName(const CorvantaSdkVideoError& error) {
    const std::string name = error.what();
    return error.reason() ? name.substr(name.find('(') + 1, name.size() - name.find('(') - 2) : name;
}

int statusOfCase(CorvantaSdkVideoError::Case kind) {
    using Error = CorvantaSdkVideoError;
    switch (kind) {
    case Error::userNotAuthenticated:
        return exitStatus::notLoggedIn;
    case Error::configurationError:
    case Error::unableToProcessInput:
    case Error::unableToProcessOutput:
    case Error::unableToProcessFile:
    case Error::mergeFailed:
    case Error::concatFailed:
    case Error::encodingFailed:
    case Error::unableToDeleteExistingThumbnail:
    case Error::thumbnailGenerationFailed:
    case Error::trimFailed:
        return exitStatus::failed;
    default:
        return exitStatus::refused;
    }
}

} // namespace

int statusOf(const std::exception& error) {
    if (const auto* told = dynamic_cast<const Told*>(&error)) {
        return told->status();
    }
    if (const auto* cancelled = dynamic_cast<const Cancelled*>(&error)) {
        return cancelled->status();
    }
    if (dynamic_cast<const UsageError*>(&error) != nullptr ||
        dynamic_cast<const std::invalid_argument*>(&error) != nullptr) {
        return exitStatus::wrongUsage;
    }
    if (const auto* own = dynamic_cast<const CorvantaSdkVideoError*>(&error)) {
        return statusOfCase(own->kind());
    }
    return dynamic_cast<const Refusal*>(&error) != nullptr ? exitStatus::refused : exitStatus::failed;
}

const char* nameOfStatus(int status) {
    switch (status) {
    case exitStatus::failed:
        return "failed";
    case exitStatus::wrongUsage:
        return "usage";
    case exitStatus::refused:
        return "refused";
    case exitStatus::notLoggedIn:
        return "notLoggedIn";
    default:
        return "cancelled";
    }
}

FailureDescription describe(const std::exception& error) {
    if (const auto* own = dynamic_cast<const CorvantaSdkVideoError*>(&error)) {
        return {caseName(*own), own->details()};
    }
    if (const auto* platform = dynamic_cast<const PlatformError*>(&error)) {
        return {platform->domain(), detailsOf(error)};
    }
    if (const auto* coded = dynamic_cast<const CodedError*>(&error)) {
        return {coded->what(), coded->details()};
    }
    if (const auto* refusal = dynamic_cast<const Refusal*>(&error)) {
        return {refusal->name(), refusal->what()};
    }
    const int status = statusOf(error);
    return {status == exitStatus::failed ? "failure" : nameOfStatus(status), error.what()};
}

std::string lineOf(const std::exception& error) {
    const auto [name, details] = describe(error);
    const bool isPlain = dynamic_cast<const CodedError*>(&error) == nullptr ||
                         dynamic_cast<const PlatformError*>(&error) != nullptr;
    std::string line = details.empty() ? name : isPlain ? details : name + ": " + details;
    std::ranges::replace(line, '\n', ' ');
    return line;
}
