#pragma once

#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>

namespace corvanta {

/// Throws `userNotAuthenticated` unless somebody is logged in.
void requireLogin(CorvantaCredentialsManager& credentialsManager);

} // namespace corvanta
