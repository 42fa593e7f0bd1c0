#include "RequestRun.hpp"

#include "DataFolder.hpp"
#include "Failures.hpp"
#include "Output.hpp"
#include "Progress.hpp"
#include "Run.hpp"

#include <fmt/chrono.h>
#include <nlohmann/json.hpp>

#include <algorithm>

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

bool isCancelled(const CorvantaSdkVideoRequest& request) {
    const auto cancelled = CorvantaSdkVideo->getRequests(CorvantaSdkVideoRequest::Status::cancelled);
    return std::ranges::find(cancelled, request.id, [](const auto& one) { return one->id; }) !=
           cancelled.end();
}

bool isFailureOfRun(const CorvantaSdkVideoError& error) {
    using Error = CorvantaSdkVideoError;
    return error.kind() == Error::concatFailed || error.kind() == Error::mergeFailed ||
           error.kind() == Error::encodingFailed;
}

std::string timestamp(CorvantaSdkVideoRequest::Date date) {
    return fmt::format("{:%Y-%m-%dT%H:%M:%SZ}", std::chrono::floor<std::chrono::seconds>(date));
}

} // namespace

void runRequest(Console& console, const RequestPointer& request, const std::string& outputPath) {
    const std::string id = uuidString(request->id);
    console.tellRequest(id);
    if (DataFolder::obstacle()) {
        console.note("the request is not kept: " + *DataFolder::obstacle());
    }
    const std::vector<URL> inputs = inputsOf(*request);
    UnfinishedOutput unfinished(outputPath);
    json about{{"id", id}};
    std::string encoder;
    {
        const Progress progress(console, std::string(name(request->type)), inputs.size());
        const Subscription told =
            CorvantaSdkVideo->streamProgress(request->id).subscribe(progress.listener());
        try {
            encoder = runInterruptible(request->process()).encoder;
        } catch (const CorvantaSdkVideoError& error) {
            // Another process may be writing what this one was refused to.
            if (!isFailureOfRun(error)) {
                unfinished.keep();
            } else if (isCancelled(*request)) {
                throw Cancelled(SIGINT, "the request was cancelled by another process");
            }
            throw;
        }
    }
    unfinished.keep();
    if (!encoder.empty()) {
        about["encoder"] = encoder;
        console.note("encoded with " + encoder);
    }
    console.resultAt(outputPath, about);
}

json toJson(const CorvantaSdkVideoRequest& request) {
    json inputs = json::array();
    for (const URL& url : inputsOf(request)) {
        inputs.push_back(url.path());
    }
    const auto output = request.outputPath();
    json object = {{"id", uuidString(request.id)},
                   {"type", name(request.type)},
                   {"status", name(request.status)},
                   {"outputPath", output ? json(output->path()) : json()},
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
