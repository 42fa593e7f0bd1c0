#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Store/ChangeStreams.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedObjectContext.hpp>
#include <CorvantaSdkVideo/Store/CoreData/ManagedVideoRequest.hpp>

#include <SQLiteCpp/Exception.h>
#include <sqlite3.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <unistd.h>

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

// SQLite says no more of a file that it can't open than just that.
std::string reasonOf(const std::exception& error, const URL& storeURL) {
    std::string reason = error.what();
    const auto* failure = dynamic_cast<const SQLite::Exception*>(&error);
    if (failure != nullptr && failure->getErrorCode() == SQLITE_CANTOPEN) {
        const std::string path = storeURL.path();
        std::error_code ignored;
        const bool isFolder = std::filesystem::is_directory(path, ignored);
        if (isFolder || access(path.c_str(), R_OK | W_OK) != 0) {
            reason += std::string(" (") + std::strerror(isFolder ? EISDIR : errno) + ')';
        }
    }
    return reason;
}

} // namespace

CoreDataCorvantaStore::CoreDataCorvantaStore(const URL& storeURL, Others others) : others_(others) {
    try {
        container_ = std::make_shared<PersistentContainer>(filePath(storeURL));
        context_ = std::make_shared<ManagedObjectContext>(container_);
    } catch (const std::exception& error) {
        Logger::logError(Event::initVideo,
                         EventMessage::openStoreFailed(storeURL, reasonOf(error, storeURL)));
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
            ManagedVideoRequest::update(withId, data, *context_);
            context_->save();
        }
    });
}

void CoreDataCorvantaStore::deleteRequest(const UUID& withId) {
    context_->performSync([&] {
        if (const auto key = ManagedVideoRequest::keyOf(withId, *context_)) {
            ManagedVideoRequest::remove(withId, *context_);
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
            ManagedVideoRequest::cancelAbandoned(*context_, true);
            context_->save();
        } catch (const std::exception&) {
            // The rows stay cancelled in the context, and are so on disk after the next commit.
        }
    });
}

bool CoreDataCorvantaStore::isRunElsewhere(const UUID& id) {
    return context_->performSync([&] { return ManagedVideoRequest::isRunElsewhere(id, *context_); });
}

Subscription CoreDataCorvantaStore::observeCancelElsewhere(const UUID& id, std::function<void()> onCancel) {
    listen();
    return context_->observe([id, onCancel = std::move(onCancel),
                              context = context_.get()](const WorkingContext::Notice& notice) {
        const auto row = notice.isForeign ? ManagedVideoRequest::getRequestBy(id, *context) : std::nullopt;
        if (row && row->status == LocalVideoRequest::Status::cancelled) {
            onCancel();
        }
    });
}

Stream<LocalVideoRequest> CoreDataCorvantaStore::streamVideo(const UUID& with) {
    const RowKey key = context_->performSync([&] { return fetchManagedUpload(with, *context_); });
    listen();
    return streamRow(context_, key, [context = context_.get(), key, with] {
        // Another process may have deleted the row and given its number to another one.
        auto row = ManagedVideoRequest::getRequestBy(key, *context);
        return row && row->id == with ? std::move(row) : std::nullopt;
    });
}

Stream<List> CoreDataCorvantaStore::streamVideos() {
    listen();
    return streamList(context_, [context = context_.get()] { return retrieveRequests(*context); });
}

Stream<List> CoreDataCorvantaStore::streamVideos(CorvantaSdkVideoRequestStatus withStatus) {
    listen();
    return streamList(
        context_, [context = context_.get(), withStatus] { return retrieveRequests(withStatus, *context); });
}

void CoreDataCorvantaStore::listen() {
    context_->performSync([&] {
        if (others_ == Others::heard && !watch_) {
            try {
                watch_.emplace(context_->peers().path(), [this] { hearOthers(); });
            } catch (const std::system_error&) {
                // No thread to be had. This process's own commits are heard without it.
            }
        }
    });
}

void CoreDataCorvantaStore::hearOthers() noexcept {
    context_->performSync([&] {
        try {
            context_->announceForeignCommits();
            if (ManagedVideoRequest::cancelAbandoned(*context_, false)) {
                context_->save();
            }
        } catch (const SQLite::Exception&) {
            // The next news are heard.
        }
    });
}

} // namespace corvanta
