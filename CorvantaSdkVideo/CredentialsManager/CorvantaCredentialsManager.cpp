#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <platform/SharedCorvantaSdkCommon.hpp>

#include <system_error>

namespace corvanta {

bool CorvantaCredentialsManagerImp::isUserAuthenticated() {
    std::error_code error;
    const auto authenticated = SharedCorvantaSdkCommonKt::sdk_common().auth()->isAuthenticated(error);
    if (error || !authenticated) {
        return false;
    }
    if (!*authenticated) {
        Logger::logError(Event::validateAuth, EventMessage::notAuthenticated());
    }
    return *authenticated;
}

} // namespace corvanta
