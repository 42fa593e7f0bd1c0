#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/CorvantaSdkVideoVideoEncoderEngine.hpp>
#include <CorvantaSdkVideo/Store/CoreData/CoreDataCorvantaStore.hpp>
#include <platform/Directories.hpp>

#include "CorvantaSdkVideo/Store/StoredRecords.hpp"
#include "support/Failure.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScriptedExecutor.hpp"
#include "support/UserFolders.hpp"

#include <stdexcept>

namespace corvanta::test {

using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;
using Type = CorvantaSdkVideoRequest::Type;
using Stored = Status;
inline constexpr std::array types = {Type::concat, Type::merge, Type::encode};

inline std::string statusName(Status status) {
    return std::string(name(static_cast<CorvantaSdkVideoRequestStatus>(status)));
}

/// "concatFailed" and so on.
inline std::string failedName(Type type) {
    return type == Type::encode ? "encodingFailed" : std::string(name(type)) + "Failed";
}

/// Notes each update as it is asked for ("processing", "pid 7", "complete -pid"), and fails on demand.
class NotingStore : public CoreDataCorvantaStore {
  public:
    /// Without `notes` it may be used from any thread.
    NotingStore(const std::string& path, std::shared_ptr<ScriptedExecutor::Notes> notes)
        : CoreDataCorvantaStore(URL::fromFilePath(path)), notes_(std::move(notes)) {}

    bool failsReads = false;
    bool failsWrites = false;
    std::function<void(const LocalVideoRequest&)> onInsert = [](const LocalVideoRequest&) {};

    void insert(const LocalVideoRequest& request) override {
        onInsert(request);
        failIf(failsWrites);
        CoreDataCorvantaStore::insert(request);
    }

    void updateRequest(const UUID& withId, const UpdateRequestData& data) override {
        if (notes_) {
            notes_->push_back(described(data));
        }
        failIf(failsWrites);
        CoreDataCorvantaStore::updateRequest(withId, data);
    }

    std::optional<LocalVideoRequest> getRequest(const UUID& withId) override {
        failIf(failsReads);
        return CoreDataCorvantaStore::getRequest(withId);
    }

    std::vector<LocalVideoRequest> getRequests(Status withStatus) override {
        failIf(failsReads);
        return CoreDataCorvantaStore::getRequests(withStatus);
    }

  private:
    static void failIf(bool fails) {
        if (fails) {
            throw std::runtime_error("the disk is full");
        }
    }

    static std::string described(const UpdateRequestData& data) {
        std::string status;
        std::string processId;
        for (const Field& field : data.fields) {
            if (field.kind() == Field::Case::status) {
                status = statusName(field.newStatus());
            } else if (field.kind() == Field::Case::processId) {
                processId = field.text() ? "pid " + *field.text() : "-pid";
            }
        }
        return status + (status.empty() || processId.empty() ? "" : " ") + processId;
    }

    std::shared_ptr<ScriptedExecutor::Notes> notes_;
};

/// The three engines and the directory over a store and an executor that runs nothing, with two empty inputs
/// "a.mp4" and "b.mp4". Everything in the notes stands in the order in which it was asked for.
struct EngineBench {
    /// `other` runs commands in place of the scripted executor, on any thread, and nothing is noted.
    explicit EngineBench(std::shared_ptr<FFMPEGCommandExecutor> other = nullptr)
        : runner(other ? std::move(other) : executor) {
        folders.make("a.mp4", "");
        folders.make("b.mp4", "");
    }

    UserFolders folders{UserFolders::memory()};
    RecordedLog log;
    std::shared_ptr<ScriptedExecutor> executor = std::make_shared<ScriptedExecutor>();
    std::shared_ptr<FFMPEGCommandExecutor> runner;
    std::shared_ptr<NotingStore> store = std::make_shared<NotingStore>(
        folders.file("store.sqlite"), runner == executor ? executor->notes : nullptr);
    std::shared_ptr<CorvantaCredentialsManager> credentials =
        std::make_shared<CorvantaCredentialsManagerImp>();

    VideosInformationGenerator probes{credentials, runner};
    ConcatInputValidator comparison{runner, credentials, probes};
    std::shared_ptr<CorvantaSdkVideoConcatEngine> concat = std::make_shared<CorvantaSdkVideoConcatEngine>(
        credentials, FFMPEGCommandGenerator(), runner, comparison, probes, CorvantaSdkVideoFileValidator(),
        store);
    std::shared_ptr<CorvantaSdkVideoMergeEngine> merge = std::make_shared<CorvantaSdkVideoMergeEngine>(
        credentials, FFMPEGMergeCommandGenerator(), runner, probes, CorvantaSdkVideoFileValidator(), store);
    std::shared_ptr<CorvantaSdkVideoVideoEncoderEngine> encode =
        std::make_shared<CorvantaSdkVideoVideoEncoderEngine>(credentials, CorvantaSdkVideoFileValidator(),
                                                             runner, FFMPEGMergeCommandGenerator(), store);
    CorvantaSdkVideoRequestBuilder requests{store, merge, concat, encode};

    URL input(const std::string& name) const { return URL::fromFilePath(folders.file(name)); }
    /// Where a run writes, without and with its extension.
    std::string output() const { return folders.file("out"); }
    URL outputURL() const { return *URL::parse(output() + ".mp4"); }

    std::shared_ptr<CorvantaSdkVideoRequestEngine> engineOf(Type type) const {
        return type == Type::concat  ? std::shared_ptr<CorvantaSdkVideoRequestEngine>(concat)
               : type == Type::merge ? std::shared_ptr<CorvantaSdkVideoRequestEngine>(merge)
                                     : encode;
    }

    /// A stored row like a builder's, with what is given in place of the builder's.
    LocalVideoRequest insertRow(
        Type type, Status status = Status::idle, const std::optional<std::string>& processId = std::nullopt,
        std::optional<std::string> rawData = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})") {
        using Operation = LocalVideoRequest::OperationType;
        LocalVideoRequest row = makeRecord(status);
        row.outputPath = outputURL();
        row.output = CorvantaSdkVideoFileDescriptor::custom(output());
        row.type = type == Type::merge    ? Operation::merge
                   : type == Type::encode ? Operation::encode
                                          : Operation::concat;
        row.inputFiles = {{input("a.mp4"), 0}, {input("b.mp4"), 1}};
        row.rawData = std::move(rawData);
        store->insert(row);
        if (processId) {
            store->updateRequest(row.id, {{Field::processId(processId)}});
        }
        executor->notes->clear();
        return row;
    }

    /// A new object of the stored row.
    RequestPointer fetch(const UUID& id) const {
        RequestPointer fetched;
        const Subscription subscription = requests.streamVideoRequest(id).subscribe(
            [&fetched](const RequestPointer& request) { fetched = request; });
        return fetched;
    }

    /// "error -" without, "processing 7" with a process id; "no row".
    std::string rowOf(const UUID& id) const {
        const auto row = store->CoreDataCorvantaStore::getRequest(id);
        return row ? statusName(row->status) + ' ' + row->processId.value_or("-") : "no row";
    }

    std::string takeNotes() const {
        std::string text;
        for (const std::string& note : std::exchange(*executor->notes, {})) {
            text += (text.empty() ? "" : ", ") + note;
        }
        return text;
    }

    /// The messages at error level since the last call.
    std::vector<std::string> takeErrors() {
        std::vector<std::string> lines = log.take();
        std::erase_if(lines, [](const std::string& line) { return !line.starts_with("error "); });
        return lines;
    }
};

/// How a run of that request fails, or "".
inline std::string failureOf(const RequestPointer& request) {
    return failureOf([&] { runBlocking(request->process()); });
}

} // namespace corvanta::test
