#pragma once

#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>
#include <CorvantaSdkVideo/CorvantaSdkVideoFile.hpp>
#include <CorvantaSdkVideo/Store/VideoStore.hpp>

#include <memory>
#include <vector>

namespace corvanta {

/// Builds a request that joins like videos by stream copy. For one caller at a time.
class ConcatBuilder {
  public:
    ConcatBuilder(std::vector<CorvantaSdkVideoFile> videos, CorvantaSdkVideoFileDescriptor output,
                  std::shared_ptr<CorvantaSdkVideoRequestEngine> engine, std::shared_ptr<VideoStore> store);

    /// The request's identity: building twice gives two objects of one id.
    const UUID id;
    const std::vector<CorvantaSdkVideoFile> videos;
    const CorvantaSdkVideoFileDescriptor output;
    const std::shared_ptr<CorvantaSdkVideoRequestEngine> engine;
    const std::shared_ptr<VideoStore> store;

    /// Makes the request and stores it as `idle`; an existing file at the output location is removed. Never
    /// throws: a request that could not be stored throws `operationNotFound` at `process()`.
    std::shared_ptr<CorvantaSdkVideoRequest> build() const;
};

} // namespace corvanta
