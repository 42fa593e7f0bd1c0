#include "RequestRun.hpp"

#include "Progress.hpp"
#include "Run.hpp"

#include <fmt/chrono.h>
#include <nlohmann/json.hpp>

#include <exception>
#include <stdexcept>

using namespace corvanta;
using json = nlohmann::ordered_json;

namespace {

std::vector<URL> inputsOf(const CorvantaSdkVideoRequest& request) {
    if (request.concatData) {
        return request.concatData->videos;
    }
    if (request.mergeData) {
        return request.mergeData->videos;
    }
    return request.encodingData ? std::vector<URL>{request.encodingData->inputFileURL} : std::vector<URL>{};
}

// The output is as long as all inputs together. Without their lengths there is no percentage; why they can't
// be read is for the request to say. Ctrl-C here means the request as well.
std::optional<std::int64_t> expectedMillis(const CorvantaSdkVideoRequest& request) {
    std::vector<CorvantaSdkVideoFile> files;
    for (const URL& url : inputsOf(request)) {
        files.emplace_back(url);
    }
    bool interrupted = false;
    std::optional<std::int64_t> total;
    try {
        const auto information =
            runInterruptible(CorvantaSdkVideo->getVideosInformation(files), [&interrupted] {
                interrupted = true;
                FFmpegKit::cancel();
            });
        total = 0;
        for (const CorvantaSdkVideoInformation& file : information) {
            *total += file.durationMillis;
        }
    } catch (const std::exception&) {
        total.reset();
    }
    if (interrupted) {
        throw std::runtime_error("interrupted before the run");
    }
    return total;
}

void cancel(CorvantaSdkVideoRequest& request) {
    try {
        request.cancel();
    } catch (const CorvantaSdkVideoError&) {
        // Not running yet, so what runs is one of its probes.
        FFmpegKit::cancel();
    }
}

std::string timestamp(CorvantaSdkVideoRequest::Date date) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", std::chrono::floor<std::chrono::seconds>(date));
}

} // namespace

void runRequest(Console& console, const RequestPointer& request) {
    fmt::print(stderr, "request {}\n", uuidString(request->id));
    const auto total = expectedMillis(*request);
    CorvantaSdkVideoRequest::Result result;
    {
        const Progress progress(console, std::string(name(request->type)), total);
        result = runInterruptible(request->process(), [request] { cancel(*request); });
    }
    if (console.json()) {
        console.print(json{{"id", uuidString(request->id)}, {"videoURL", result.videoURL.absoluteString()}});
    } else {
        console.print("{}\n", result.videoURL.path());
    }
}

json toJson(const CorvantaSdkVideoRequest& request) {
    json inputs = json::array();
    for (const URL& url : inputsOf(request)) {
        inputs.push_back(url.absoluteString());
    }
    const auto output = request.outputPath();
    json object = {{"id", uuidString(request.id)},
                   {"type", name(request.type)},
                   {"status", name(request.status)},
                   {"outputPath", output ? json(output->absoluteString()) : json()},
                   {"inputs", inputs},
                   {"createdAt", timestamp(request.createdAt)},
                   {"updatedAt", timestamp(request.updatedAt)},
                   {"errorMessage", request.errorMessage ? json(*request.errorMessage) : json()}};
    if (request.mergeData) {
        object["parameters"] = json::parse(*jsonRepresentation(request.mergeData->serializable()));
    } else if (request.encodingData) {
        object["parameters"] = json::parse(*jsonRepresentation(request.encodingData->serializable()));
    }
    return object;
}

std::string toLine(const CorvantaSdkVideoRequest& request) {
    const auto output = request.outputPath();
    return fmt::format("{}  {:<6}  {:<10}  {}  {} files -> {}", uuidString(request.id), name(request.type),
                       name(request.status), timestamp(request.updatedAt), inputsOf(request).size(),
                       output ? output->path() : "?");
}
