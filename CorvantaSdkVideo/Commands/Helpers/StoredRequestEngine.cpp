#include <CorvantaSdkVideo/Commands/Helpers/StoredRequestEngine.hpp>

#include <CorvantaSdkVideo/Commands/Helpers/RequestProgress.hpp>
#include <CorvantaSdkVideo/CredentialsManager/LoginCheck.hpp>
#include <CorvantaSdkVideo/Error/CorvantaSdkVideoError.hpp>
#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <platform/Cancellation.hpp>
#include <platform/ConsoleSink.hpp>
#include <platform/Errors.hpp>
#include <platform/FFmpegKit.hpp>
#include <platform/NeverDestroyed.hpp>

#include <atomic>
#include <charconv>
#include <exception>
#include <iterator>
#include <mutex>
#include <set>
#include <utility>

namespace corvanta {

namespace {

using Error = CorvantaSdkVideoError;
using Field = UpdateRequestData::Field;
using Status = LocalVideoRequest::Status;

std::optional<std::int64_t> sessionIdFrom(const std::optional<std::string>& processId) {
    if (!processId) {
        return std::nullopt;
    }
    std::int64_t id = 0;
    const char* const end = processId->data() + processId->size();
    const auto [last, error] = std::from_chars(processId->data(), end, id);
    return error == std::errc() && last == end ? std::optional(id) : std::nullopt;
}

// The cancellations under way in this process. A cancelled run fails before its row says why, and must not
// call that a failure in the moment between.
class Cancellations {
  public:
    void begin(const UUID& id) {
        const std::lock_guard lock(mutex_);
        ids_.insert(id);
    }
    void end(const UUID& id) {
        const std::lock_guard lock(mutex_);
        ids_.extract(id);
    }
    bool contain(const UUID& id) {
        const std::lock_guard lock(mutex_);
        return ids_.contains(id);
    }

  private:
    std::mutex mutex_;
    std::multiset<UUID> ids_;
};

Cancellations& cancellations() {
    static NeverDestroyed<Cancellations> shared;
    return *shared;
}

struct Cancelling {
    explicit Cancelling(const UUID& request) : id(request) { cancellations().begin(id); }
    Cancelling(const Cancelling&) = delete;
    Cancelling& operator=(const Cancelling&) = delete;
    ~Cancelling() { cancellations().end(id); }

    const UUID id;
};

} // namespace

StoredRequestEngine::StoredRequestEngine(std::shared_ptr<CorvantaCredentialsManager> credentialsManager,
                                         std::shared_ptr<FFMPEGCommandExecutor> commandExecutor,
                                         std::shared_ptr<VideoStore> store)
    : credentialsManager_(std::move(credentialsManager)), commandExecutor_(std::move(commandExecutor)),
      store_(std::move(store)) {}

Task<CorvantaSdkVideoRequestResult>
StoredRequestEngine::process(std::shared_ptr<CorvantaSdkVideoRequest> request) {
    const auto self = shared_from_this();
    validateAuthentication();
    validateRequestStatus(*request);
    // Also when the host's loop drops the run in the middle.
    struct Row {
        const StoredRequestEngine& engine;
        const UUID id;
        bool isSettled = false;
        ~Row() {
            if (!isSettled) {
                engine.markCancelled(id);
            }
        }
    } row{*this, request->id};
    const auto meter = RequestProgress::shared().begin(request->id);
    try {
        CorvantaSdkVideoRequestResult result = co_await carryOut(request);
        row.isSettled = true;
        meter->complete();
        co_return result;
    } catch (const std::exception& error) {
        row.isSettled = !isCancellation(error);
        throw;
    }
}

void StoredRequestEngine::cancel(const CorvantaSdkVideoRequest& request) {
    const auto stored = storedRequest(request.id);
    const auto sessionId = stored ? sessionIdFrom(stored->processId) : std::nullopt;
    if (!sessionId) {
        throw Error(Error::operationNotFound,
                    stored ? "the request has no running command" : "no request of this id is stored");
    }
    if (stored->status != Status::processing) {
        throw Error(Error::operationMustBeProcessingToBeCancelled, "the request doesn't run");
    }
    const Cancelling underWay(request.id);
    // The session of another process is ended by that process, once it sees the row.
    if (!store_->isRunElsewhere(request.id)) {
        commandExecutor_->cancelCommandExecution(*sessionId);
    }
    markCancelled(request.id);
}

void StoredRequestEngine::validateAuthentication() const { requireLogin(*credentialsManager_); }

void StoredRequestEngine::validateRequestStatus(const CorvantaSdkVideoRequest& request) const {
    const auto stored = storedRequest(request.id);
    if (!stored) {
        throw Error(Error::operationNotFound, "no request of this id is stored");
    }
    if (stored->status == Status::processing) {
        throw Error(Error::operationStillsInProgress, "the request is being processed");
    }
    if (stored->status == Status::completed) {
        throw Error(Error::operationAlreadyCompleted, "the request is complete");
    }
}

void StoredRequestEngine::updateRequestRequest(const UUID& id, Fields withFields) const {
    try {
        store_->updateRequest(id, UpdateRequestData{{withFields.begin(), withFields.end()}});
    } catch (const std::exception& error) {
        printToConsole(std::string("Request update failed with error ") + error.what());
    }
}

Task<> StoredRequestEngine::run(UUID id, std::string script, double seconds) {
    const auto meter = RequestProgress::shared().running(id);
    if (meter) {
        meter->setTotal(seconds);
        meter->beginPart(1, seconds);
    }
    const auto running = std::make_shared<std::atomic<std::int64_t>>();
    const Subscription cancelledElsewhere =
        store_->observeCancelElsewhere(id, [executor = commandExecutor_, running] {
            if (const std::int64_t session = *running) {
                executor->cancelCommandExecution(session);
            }
        });
    FFMPEGCommandExecutor::OnUpdateSessionId onUpdateSessionId = [weak = weak_from_this(), id,
                                                                  running](std::int64_t sessionId) {
        *running = sessionId;
        if (const auto self = weak.lock()) {
            self->updateRequestRequest(id, {Field::processId(std::to_string(sessionId))});
        }
    };
    co_await commandExecutor_->executeMeasured(std::move(script), std::move(onUpdateSessionId), meter);
    if (meter) {
        meter->finish();
    }
}

Task<std::string> StoredRequestEngine::runFirstWorking(UUID id, std::vector<EncoderRun> runs,
                                                       double seconds) {
    for (auto tried = runs.begin();; ++tried) {
        const auto next = std::next(tried);
        try {
            co_await run(id, std::move(tried->script), seconds);
            if (!tried->encoder.empty()) {
                Logger::addLog(Event::processRequest, EventMessage::encoderChosen(id, tried->encoder));
            }
            co_return tried->encoder;
        } catch (const PlatformError& error) {
            if (next == runs.end() || error.code() == ReturnCode::cancelled) {
                throw;
            }
            // From here on a cancel finds no session that has ended; one that came before has left its mark.
            updateRequestRequest(id, {Field::processId(std::nullopt)});
            if (isRequestCancelled(id)) {
                throw;
            }
            Logger::addLog(Event::processRequest,
                           EventMessage::encoderFailed(tried->encoder, next->encoder, error));
        }
    }
}

void StoredRequestEngine::markProcessing(const UUID& id) const {
    // A session that an earlier run has left there is not this run's.
    updateRequestRequest(id, {Field::status(Status::processing), Field::processId(std::nullopt)});
}

void StoredRequestEngine::markComplete(const UUID& id) const {
    updateRequestRequest(id, {Field::status(Status::completed), Field::processId(std::nullopt)});
}

void StoredRequestEngine::markFailed(const UUID& id, const std::exception& error) const {
    if (isCancellation(error)) {
        markCancelled(id);
    } else if (!cancellations().contain(id) && !isRequestCancelled(id)) {
        updateRequestRequest(id, {Field::status(Status::error), Field::processId(std::nullopt)});
    }
}

void StoredRequestEngine::markUnusable(const UUID& id) const {
    updateRequestRequest(id, {Field::status(Status::error)});
}

void StoredRequestEngine::markCancelled(const UUID& id) const {
    updateRequestRequest(id, {Field::status(Status::cancelled), Field::processId(std::nullopt)});
}

std::optional<LocalVideoRequest> StoredRequestEngine::storedRequest(const UUID& id) const {
    try {
        return store_->getRequest(id);
    } catch (const std::exception&) {
        // A row that can't be read is no row.
        return std::nullopt;
    }
}

bool StoredRequestEngine::isRequestCancelled(const UUID& id) const {
    const auto stored = storedRequest(id);
    return stored && stored->status == Status::cancelled;
}

} // namespace corvanta
