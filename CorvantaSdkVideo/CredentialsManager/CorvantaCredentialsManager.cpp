#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <exception>
#include <optional>
#include <system_error>

namespace corvanta {

namespace {

// Nothing if the library couldn't tell, whichever way it says so.
std::optional<bool> answer() {
    try {
        std::error_code error;
        const auto authenticated = SharedCorvantaSdkCommonKt::sdk_common().auth()->isAuthenticated(error);
        return error ? std::nullopt : authenticated;
    } catch (const std::exception&) {
        return std::nullopt;
    }
}

} // namespace

bool CorvantaCredentialsManagerImp::isUserAuthenticated() {
    const std::optional<bool> authenticated = answer();
    if (!authenticated) {
        return false;
    }
    if (!*authenticated) {
        Logger::logError(Event::validateAuth, EventMessage::notAuthenticated());
    }
    return *authenticated;
}

} // namespace corvanta
