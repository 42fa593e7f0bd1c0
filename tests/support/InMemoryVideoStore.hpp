#pragma once

#include <CorvantaSdkVideo/Logger/Logger.hpp>
#include <CorvantaSdkVideo/Store/ChangeStreams.hpp>
#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>

namespace corvanta::test {

/// A `VideoStore` without a file. Paths come back as inserted: it makes no bookmarks.
class InMemoryVideoStore : public VideoStore {
  public:
    /// Called at the start of each commit, within the store's scope; throws what the caller shall get. The
    /// change is then pending, and part of the next commit.
    std::function<void()> onCommit;

    void insert(const LocalVideoRequest& request) override {
        Logger::addLog(Event::insertRequest, EventMessage::insertRequest(request.id));
        LocalVideoRequest row = request;
        row.output = storedOutput(row.outputPath);
        row.error.reset();
        row.processId.reset();
        for (std::size_t position = 0; position < row.inputFiles.size(); ++position) {
            row.inputFiles[position].index = static_cast<std::int64_t>(position);
        }
        table_->performSync([&] {
            table_->rows.emplace(table_->nextKey++, std::move(row));
            commit();
        });
    }

    void updateRequest(const UUID& withId, const UpdateRequestData& data) override {
        Logger::addLog(Event::updateRequest, EventMessage::updateRequest(withId));
        table_->performSync([&] {
            const auto row = table_->find(withId);
            if (row == table_->rows.end()) {
                return;
            }
            for (const UpdateRequestData::Field& field : data.fields) {
                write(field, row->second);
            }
            row->second.updatedAt = std::chrono::system_clock::now();
            table_->updated.push_back(row->first);
            commit();
        });
    }

    void deleteRequest(const UUID& withId) override {
        table_->performSync([&] {
            if (const auto row = table_->find(withId); row != table_->rows.end()) {
                table_->rows.erase(row);
                commit();
            }
        });
    }

    std::optional<LocalVideoRequest> getRequest(const UUID& withId) override {
        Logger::addLog(Event::getRequestById, EventMessage::getRequestBy(withId));
        return table_->performSync([&]() -> std::optional<LocalVideoRequest> {
            const auto row = table_->find(withId);
            return row == table_->rows.end() ? std::nullopt : std::optional(row->second);
        });
    }

    std::vector<LocalVideoRequest> getRequests(LocalVideoRequest::Status withStatus) override {
        return table_->performSync([&] { return table_->list(withStatus); });
    }

    void resetPendingRequests() noexcept override {
        table_->performSync([&] {
            for (auto& [key, row] : table_->rows) {
                if (row.status == LocalVideoRequest::Status::processing) {
                    row.status = LocalVideoRequest::Status::cancelled;
                    table_->updated.push_back(key);
                }
            }
            if (table_->updated.empty()) {
                return;
            }
            try {
                commit();
            } catch (const std::exception&) {
                // The interface drops it.
            }
        });
    }

    Stream<LocalVideoRequest> streamVideo(const UUID& with) override {
        const RowKey key = table_->performSync([&] {
            const auto row = table_->find(with);
            if (row == table_->rows.end()) {
                throw CoreDataCorvantaStore::Error(CoreDataCorvantaStore::Error::uploadNotFound);
            }
            return row->first;
        });
        return streamRow(table_, key, [table = table_.get(), key]() -> std::optional<LocalVideoRequest> {
            const auto row = table->rows.find(key);
            return row == table->rows.end() ? std::nullopt : std::optional(row->second);
        });
    }

    Stream<std::vector<LocalVideoRequest>> streamVideos() override {
        return streamList(table_, [table = table_.get()] { return table->list(std::nullopt); });
    }

    Stream<std::vector<LocalVideoRequest>> streamVideos(CorvantaSdkVideoRequestStatus withStatus) override {
        const auto status = LocalVideoRequest::statusWithRawValue(static_cast<int>(withStatus));
        return streamList(table_, [table = table_.get(), status] { return table->list(status); });
    }

  private:
    struct Table : WorkingContext {
        std::map<RowKey, LocalVideoRequest> rows;
        RowKey nextKey = 1;
        std::vector<RowKey> updated;

        std::map<RowKey, LocalVideoRequest>::iterator find(const UUID& id) {
            return std::find_if(rows.begin(), rows.end(),
                                [&](const auto& row) { return row.second.id == id; });
        }

        std::vector<LocalVideoRequest> list(std::optional<LocalVideoRequest::Status> status) const {
            std::vector<LocalVideoRequest> found;
            for (const auto& [key, row] : rows) {
                if (!status || row.status == *status) {
                    found.push_back(row);
                }
            }
            return found;
        }
    };

    static void write(const UpdateRequestData::Field& field, LocalVideoRequest& row) {
        switch (field.kind()) {
        case UpdateRequestData::Field::Case::error:
            row.error = field.text();
            break;
        case UpdateRequestData::Field::Case::status:
            row.status = field.newStatus();
            break;
        case UpdateRequestData::Field::Case::processId:
            row.processId = field.text();
            break;
        }
    }

    void commit() {
        if (onCommit) {
            onCommit();
        }
        table_->announceCommit(std::exchange(table_->updated, {}));
    }

    std::shared_ptr<Table> table_ = std::make_shared<Table>();
};

} // namespace corvanta::test
