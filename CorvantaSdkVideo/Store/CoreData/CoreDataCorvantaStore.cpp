#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Store/ChangeStreams.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>

#include <filesystem>

namespace corvanta {

namespace {

using List = std::vector<LocalVideoRequest>;

List retrieveRequests(ManagedObjectContext& context) {
    try {
        return ManagedVideoRequest::findAll(context);
    } catch (const SQLite::Exception&) {
        return {};
    }
}

List retrieveRequests(CorvantaSdkVideoRequestStatus withStatus, ManagedObjectContext& context) {
    try {
        return ManagedVideoRequest::findBy(withStatus, context);
    } catch (const SQLite::Exception&) {
        return {};
    }
}

RowKey fetchManagedUpload(const UUID& byId, ManagedObjectContext& context) {
    const auto key = ManagedVideoRequest::keyOf(byId, context);
    if (!key) {
        throw CoreDataCorvantaStore::Error(CoreDataCorvantaStore::Error::uploadNotFound);
    }
    return *key;
}

// Absolute, since SQLite takes an empty name and some special ones for databases in memory.
std::string filePath(const URL& storeURL) {
    const std::string path = storeURL.path();
    if (path.empty() || path.find('\0') != std::string::npos) {
        throw SQLite::Exception("The store's URL names no file.");
    }
    return std::filesystem::absolute(path).string();
}

} // namespace

CoreDataCorvantaStore::CoreDataCorvantaStore(const URL& storeURL) {
    try {
        container_ = std::make_shared<PersistentContainer>(filePath(storeURL));
        context_ = std::make_shared<ManagedObjectContext>(container_);
    } catch (const std::exception&) {
        throw Error(Error::failedToLoadPersistentContainer);
    }
}

CoreDataCorvantaStore::~CoreDataCorvantaStore() = default;

void CoreDataCorvantaStore::insert(const LocalVideoRequest& request) {
    Logger::addLog(Event::insertRequest, EventMessage::insertRequest(request.id));
    context_->performSync([&] {
        ManagedVideoRequest::insertUpload(*context_, request);
        context_->save();
    });
}

void CoreDataCorvantaStore::updateRequest(const UUID& withId, const UpdateRequestData& data) {
    Logger::addLog(Event::updateRequest, EventMessage::updateRequest(withId));
    context_->performSync([&] {
        if (const auto key = ManagedVideoRequest::keyOf(withId, *context_)) {
            ManagedVideoRequest::update(*key, data, *context_);
            context_->save();
        }
    });
}

void CoreDataCorvantaStore::deleteRequest(const UUID& withId) {
    context_->performSync([&] {
        if (const auto key = ManagedVideoRequest::keyOf(withId, *context_)) {
            ManagedVideoRequest::remove(*key, *context_);
            context_->save();
        }
    });
}

std::optional<LocalVideoRequest> CoreDataCorvantaStore::getRequest(const UUID& withId) {
    Logger::addLog(Event::getRequestById, EventMessage::getRequestBy(withId));
    return context_->performSync([&] { return ManagedVideoRequest::getRequestBy(withId, *context_); });
}

List CoreDataCorvantaStore::getRequests(LocalVideoRequest::Status withStatus) {
    return context_->performSync([&] { return ManagedVideoRequest::getRequestsBy(withStatus, *context_); });
}

void CoreDataCorvantaStore::resetPendingRequests() noexcept {
    context_->performSync([&] {
        try {
            ManagedVideoRequest::replaceStatus(LocalVideoRequest::Status::processing,
                                               LocalVideoRequest::Status::cancelled, *context_);
            context_->save();
        } catch (const std::exception&) {
            // The rows stay cancelled in the context, and are so on disk after the next commit.
        }
    });
}

Stream<LocalVideoRequest> CoreDataCorvantaStore::streamVideo(const UUID& with) {
    const RowKey key = context_->performSync([&] { return fetchManagedUpload(with, *context_); });
    return streamRow(context_, key, [context = context_.get(), key] {
        return ManagedVideoRequest::getRequestBy(key, *context);
    });
}

Stream<List> CoreDataCorvantaStore::streamVideos() {
    return streamList(context_, [context = context_.get()] { return retrieveRequests(*context); });
}

Stream<List> CoreDataCorvantaStore::streamVideos(CorvantaSdkVideoRequestStatus withStatus) {
    return streamList(
        context_, [context = context_.get(), withStatus] { return retrieveRequests(withStatus, *context); });
}

} // namespace corvanta
