#pragma once

#include <platform/Task.hpp>
#include <platform/URL.hpp>

#include <memory>
#include <string>

namespace corvanta {

class CorvantaSdkVideoRequest;

/// What a finished request gives; known to hosts as `CorvantaSdkVideoRequest::Result`.
struct CorvantaSdkVideoRequestResult {
    /// The file that ffmpeg was told to write.
    URL videoURL;
    /// ffmpeg's name of the encoder that made the picture; empty for a request that doesn't choose one.
    std::string encoder = {};
};

/// Carries out requests of one type. Safe from any thread.
class CorvantaSdkVideoRequestEngine {
  public:
    virtual ~CorvantaSdkVideoRequestEngine() = default;

    virtual Task<CorvantaSdkVideoRequestResult> process(std::shared_ptr<CorvantaSdkVideoRequest> request) = 0;

    virtual void cancel(const CorvantaSdkVideoRequest& request) = 0;
};

} // namespace corvanta
