#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoJoin.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>
#include <platform/Task.hpp>

#include <memory>
#include <vector>

namespace corvanta {

class JoinInspector;

/// Builds a request that makes one video of several, whatever they are: by stream copy if they are alike,
/// else by encoding them at the size and the rate that most seconds of them have, upright where most are
/// upright. The request is a stored concat or merge. Title, date and place of the first file are kept. Files
/// may have any name: what they hold counts. For one caller at a time.
class JoinBuilder {
  public:
    JoinBuilder(std::vector<CorvantaSdkVideoFile> videos, CorvantaSdkVideoFileDescriptor output,
                std::shared_ptr<const JoinInspector> inspector,
                std::shared_ptr<CorvantaSdkVideoRequestEngine> concatEngine,
                std::shared_ptr<CorvantaSdkVideoRequestEngine> mergeEngine,
                std::shared_ptr<VideoStore> store);

    /// The request's identity: building twice gives two objects of one id.
    const UUID id;
    const std::vector<CorvantaSdkVideoFile> videos;
    const CorvantaSdkVideoFileDescriptor output;
    const std::shared_ptr<const JoinInspector> inspector;
    const std::shared_ptr<CorvantaSdkVideoRequestEngine> concatEngine;
    const std::shared_ptr<CorvantaSdkVideoRequestEngine> mergeEngine;
    const std::shared_ptr<VideoStore> store;

    CorvantaSdkVideoJoinOptions options;

    /// What `build` will make, and why. Throws what `joinInspection` of the interface throws.
    Task<CorvantaSdkVideoJoinInspection> inspect() const;

    /// Makes the request that an inspection of these files told of, and stores it as `idle`; an existing file
    /// at the output location, with the inspection's extension, is removed. Never throws: a request that
    /// could not be stored throws `operationNotFound` at `process()`.
    std::shared_ptr<CorvantaSdkVideoRequest> build(const CorvantaSdkVideoJoinInspection& inspection) const;

    /// Both in one.
    Task<std::shared_ptr<CorvantaSdkVideoRequest>> build() const;
};

} // namespace corvanta
