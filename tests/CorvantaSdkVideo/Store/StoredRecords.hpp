#pragma once

#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <algorithm>

/// Records for the tests of stores.
namespace corvanta::test {

using List = std::vector<LocalVideoRequest>;
using Status = LocalVideoRequest::Status;
using Field = UpdateRequestData::Field;

/// A record as a builder makes it, of files that aren't there.
inline LocalVideoRequest makeRecord(Status status = Status::idle, int inputs = 2) {
    const UUID id = makeUUID();
    const std::string path = "/nowhere/" + uuidString(id);
    LocalVideoRequest record{id,
                             status,
                             URL::fromFilePath(path + ".mp4"),
                             CorvantaSdkVideoFileDescriptor::custom(path),
                             LocalVideoRequest::OperationType::concat,
                             std::nullopt,
                             {},
                             std::nullopt,
                             std::nullopt,
                             std::chrono::system_clock::now(),
                             std::chrono::system_clock::now()};
    for (int index = 0; index < inputs; ++index) {
        record.inputFiles.push_back({URL::fromFilePath(path + "-" + std::to_string(index)), index});
    }
    return record;
}

/// All records, in the order of their ids.
inline List sorted(List records) {
    std::sort(records.begin(), records.end(),
              [](const auto& left, const auto& right) { return left.id < right.id; });
    return records;
}

inline List allRecords(VideoStore& store) {
    List all;
    for (const Status status :
         {Status::processing, Status::error, Status::cancelled, Status::completed, Status::idle}) {
        const List some = store.getRequests(status);
        all.insert(all.end(), some.begin(), some.end());
    }
    return sorted(std::move(all));
}

} // namespace corvanta::test
