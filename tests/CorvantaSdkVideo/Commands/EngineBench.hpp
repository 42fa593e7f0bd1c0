#pragma once

#include <CorvantaSdkVideo/Commands/Concat/CorvantaSdkVideoConcatEngine.hpp>
#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequestBuilder.hpp>
#include <CorvantaSdkVideo/Commands/Encoding/CorvantaSdkVideoVideoEncoderEngine.hpp>
#include <CorvantaSdkVideo/Commands/Merge/CorvantaSdkVideoMergeEngine.hpp>

#include "support/InMemoryVideoStore.hpp"
#include "support/Processes.hpp"
#include "support/RecordedLog.hpp"
#include "support/ScopedVariable.hpp"
#include "support/ScriptedExecutor.hpp"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace corvanta::test {

using RequestPointer = std::shared_ptr<CorvantaSdkVideoRequest>;
using Type = CorvantaSdkVideoRequest::Type;
inline constexpr std::array types = {Type::concat, Type::merge, Type::encode};
using Stored = LocalVideoRequest::Status;

inline std::string statusName(Stored status) {
    return std::string(name(static_cast<CorvantaSdkVideoRequestStatus>(status)));
}

/// Notes each update as it is asked for ("processing", "pid 7", "complete -pid"), and fails on demand.
class NotingStore : public InMemoryVideoStore {
  public:
    explicit NotingStore(std::shared_ptr<ScriptedExecutor::Notes> notes) : notes_(std::move(notes)) {}

    bool failsReads = false;
    bool failsWrites = false;

    void insert(const LocalVideoRequest& request) override {
        failIf(failsWrites);
        InMemoryVideoStore::insert(request);
    }

    void updateRequest(const UUID& withId, const UpdateRequestData& data) override {
        notes_->push_back(described(data));
        failIf(failsWrites);
        InMemoryVideoStore::updateRequest(withId, data);
    }

    std::optional<LocalVideoRequest> getRequest(const UUID& withId) override {
        failIf(failsReads);
        return InMemoryVideoStore::getRequest(withId);
    }

    std::vector<LocalVideoRequest> getRequests(Stored withStatus) override {
        failIf(failsReads);
        return InMemoryVideoStore::getRequests(withStatus);
    }

  private:
    using Field = UpdateRequestData::Field;

    static void failIf(bool fails) {
        if (fails) {
            throw std::runtime_error("the disk is full");
        }
    }

    static std::string described(const UpdateRequestData& data) {
        std::vector<std::string> words;
        for (const Field& field : data.fields) {
            if (field.kind() == Field::Case::status) {
                words.insert(words.begin(), statusName(field.newStatus()));
            } else if (field.kind() == Field::Case::processId) {
                words.push_back(field.text() ? "pid " + *field.text() : "-pid");
            } else {
                words.push_back("error text");
            }
        }
        std::string text;
        for (const std::string& word : words) {
            text += (text.empty() ? "" : " ") + word;
        }
        return text;
    }

    std::shared_ptr<ScriptedExecutor::Notes> notes_;
};

/// The three engines and the directory over a store in memory and an executor that runs nothing, with two
/// empty inputs "a.mp4" and "b.mp4". Everything in the notes stands in the order in which it was asked for.
struct EngineBench {
    TemporaryDirectory directory;
    ScopedVariable data{"XDG_DATA_HOME", directory.file("data")};
    RecordedLog log;

    std::shared_ptr<ScriptedExecutor::Notes> notes = std::make_shared<ScriptedExecutor::Notes>();
    std::shared_ptr<ScriptedExecutor> executor = std::make_shared<ScriptedExecutor>(notes);
    std::shared_ptr<NotingStore> store = std::make_shared<NotingStore>(notes);
    std::shared_ptr<CorvantaCredentialsManager> credentials =
        std::make_shared<CorvantaCredentialsManagerImp>();

    VideosInformationGenerator probes{credentials, executor};
    std::shared_ptr<CorvantaSdkVideoConcatEngine> concat = std::make_shared<CorvantaSdkVideoConcatEngine>(
        credentials, FFMPEGCommandGenerator(), executor, ConcatInputValidator(executor, credentials, probes),
        probes, CorvantaSdkVideoFileValidator(), store);
    std::shared_ptr<CorvantaSdkVideoMergeEngine> merge = std::make_shared<CorvantaSdkVideoMergeEngine>(
        credentials, FFMPEGMergeCommandGenerator(), executor, probes, CorvantaSdkVideoFileValidator(), store);
    std::shared_ptr<CorvantaSdkVideoVideoEncoderEngine> encode =
        std::make_shared<CorvantaSdkVideoVideoEncoderEngine>(credentials, CorvantaSdkVideoFileValidator(),
                                                             executor, FFMPEGMergeCommandGenerator(), store);
    CorvantaSdkVideoRequestBuilder requests{store, merge, concat, encode};

    EngineBench() {
        for (const char* name : {"a.mp4", "b.mp4"}) {
            writeFile(directory.file(name), "");
        }
    }

    URL input(const std::string& name) const { return URL::fromFilePath(directory.file(name)); }
    /// Where a run writes, without and with its extension.
    std::string output() const { return directory.file("out"); }
    URL outputURL() const { return *URL::parse(output() + ".mp4"); }

    std::shared_ptr<CorvantaSdkVideoRequestEngine> engineOf(Type type) const {
        switch (type) {
        case Type::merge:
            return merge;
        case Type::encode:
            return encode;
        case Type::concat:
            break;
        }
        return concat;
    }

    /// A stored row like a builder's, of another status and process id if wanted.
    LocalVideoRequest insertRow(Type type, Stored status = Stored::idle,
                                const std::optional<std::string>& processId = std::nullopt) {
        using Operation = LocalVideoRequest::OperationType;
        LocalVideoRequest row{.id = makeUUID(),
                              .status = status,
                              .outputPath = outputURL(),
                              .output = CorvantaSdkVideoFileDescriptor::custom(output()),
                              .type = type == Type::merge    ? Operation::merge
                                      : type == Type::encode ? Operation::encode
                                                             : Operation::concat,
                              .error = std::nullopt,
                              .inputFiles = {{input("a.mp4"), 0}, {input("b.mp4"), 1}},
                              .rawData = R"({"videoTracks":[],"audioTracks":[],"framesRate":"30"})",
                              .processId = std::nullopt,
                              .createdAt = std::chrono::system_clock::now(),
                              .updatedAt = std::chrono::system_clock::now()};
        if (type == Type::encode) {
            row.inputFiles.pop_back();
        }
        store->insert(row);
        if (processId) {
            store->updateRequest(row.id, {{UpdateRequestData::Field::processId(processId)}});
        }
        notes->clear();
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
        const auto row = store->InMemoryVideoStore::getRequest(id);
        return row ? statusName(row->status) + ' ' + row->processId.value_or("-") : "no row";
    }

    std::string takeNotes() const {
        std::string text;
        for (const std::string& note : std::exchange(*notes, {})) {
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

    /// The extensions of the files left in the documents directory.
    std::vector<std::string> documents() const {
        std::vector<std::string> names;
        std::error_code notMade;
        const auto folder = directory.path() / "data/corvanta-sdk-video/documents";
        for (const auto& entry : std::filesystem::directory_iterator(folder, notMade)) {
            names.push_back(entry.path().extension());
        }
        return names;
    }
};

/// "" or the error's name.
template <typename Run>
std::string failureOf(Run run) {
    try {
        run();
        return "";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace corvanta::test
