#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/EncoderRun.hpp>
#include <CorvantaSdkVideo/CredentialsManager/CorvantaCredentialsManager.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommand.hpp>
#include <CorvantaSdkVideo/Shared/FFMPEGCommands/FFMPEGCommandExecutor.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <exception>
#include <memory>
#include <string>
#include <vector>

namespace corvanta {

/// What the engines have in common: the checks before a run, the run itself with its row in the store, and
/// cancel. The state of a request is its row alone. Made as a shared_ptr.
///
/// A run that Asio cancels, or that is dropped with its event loop, leaves its row `cancelled` in whatever
/// phase it was.
class StoredRequestEngine : public CorvantaSdkVideoRequestEngine,
                            public std::enable_shared_from_this<StoredRequestEngine> {
  public:
    Task<CorvantaSdkVideoRequestResult> process(std::shared_ptr<CorvantaSdkVideoRequest> request) final;
    void cancel(const CorvantaSdkVideoRequest& request) override;

  protected:
    using Fields = std::vector<UpdateRequestData::Field>;

    StoredRequestEngine(std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                        std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                        std::shared_ptr<VideoStore> store);

    /// What is left of `process` once the login and the row's status have been found right.
    virtual Task<CorvantaSdkVideoRequestResult>
    carryOut(std::shared_ptr<CorvantaSdkVideoRequest> request) = 0;

    /// Best effort: a failure is printed, so that it doesn't stop a run.
    void updateRequestRequest(const UUID& id, Fields withFields) const;

    /// Runs a script, whose result will last about `seconds`; the session's id goes to the row as soon as
    /// there is one. Throws the executor's error.
    Task<> run(UUID id, std::string script, double seconds = 0);

    /// Runs the first of them; where that fails without having been stopped, the next one. Gives the encoder
    /// of the one that succeeded, throws the last one's error.
    Task<std::string> runFirstWorking(UUID id, std::vector<EncoderRun> runs, double seconds);

    void markProcessing(const UUID& id) const;
    void markComplete(const UUID& id) const;
    /// Leaves a row alone that a cancel has settled.
    void markFailed(const UUID& id, const std::exception& error) const;
    /// For a request without operation data, which no command was run for.
    void markUnusable(const UUID& id) const;

    FFMPEGCommandExecutor& commandExecutor() const { return *commandExecutor_; }

  private:
    /// Throws `userNotAuthenticated`.
    void validateAuthentication() const;

    /// Throws `operationNotFound`, `operationStillsInProgress` or `operationAlreadyCompleted`.
    void validateRequestStatus(const CorvantaSdkVideoRequest& request) const;

    void markCancelled(const UUID& id) const;

    std::optional<LocalVideoRequest> storedRequest(const UUID& id) const;
    bool isRequestCancelled(const UUID& id) const;

    std::shared_ptr<CorvantaCredentialsManager> credentialsManager_;
    std::shared_ptr<FFMPEGCommandExecutor> commandExecutor_;
    std::shared_ptr<VideoStore> store_;
};

} // namespace corvanta
