#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>

#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>

namespace corvanta {

void requireLogin(CorvantaCredentialsManager& credentialsManager) {
    if (!credentialsManager.isUserAuthenticated()) {
        throw CorvantaSdkVideoError(CorvantaSdkVideoError::userNotAuthenticated, "nobody is logged in");
    }
}

} // namespace corvanta
