#pragma once

namespace corvanta {

/// The login gate.
class CorvantaCredentialsManager {
  public:
    virtual ~CorvantaCredentialsManager() = default;

    virtual bool isUserAuthenticated() = 0;
};

/// Asks the maker's common library. An error of the library counts as not logged in; a plain "no" is logged
/// here, so that callers only raise their error. Stateless, safe from any thread.
class CorvantaCredentialsManagerImp : public CorvantaCredentialsManager {
  public:
    bool isUserAuthenticated() override;
};

} // namespace corvanta
