#include <CorvantaSdkVideo/Commands/CorvantaSdkVideoRequest.hpp>

#include <CorvantaSdkVideo/Logger/Logger.hpp>

#include <array>
#include <utility>

namespace corvanta {

CorvantaSdkVideoRequest::CorvantaSdkVideoRequest(
    UUID id_, Type type_, Status status_, CorvantaSdkVideoFileDescriptor output_, Date createdAt_,
    Date updatedAt_, std::optional<VideoEncodingData> encodingData_, std::optional<VideoMergeData> mergeData_,
    std::optional<VideoConcatData> concatData_, std::optional<std::string> errorMessage_,
    std::optional<URL> outputPath, std::shared_ptr<CorvantaSdkVideoRequestEngine> engine_)
    : id(id_), type(type_), status(status_), output(std::move(output_)), createdAt(createdAt_),
      updatedAt(updatedAt_), errorMessage(std::move(errorMessage_)), encodingData(std::move(encodingData_)),
      mergeData(std::move(mergeData_)), concatData(std::move(concatData_)), engine(std::move(engine_)),
      outputPath_(std::move(outputPath)) {}

std::optional<URL> CorvantaSdkVideoRequest::outputPath() const {
    const std::lock_guard lock(mutex_);
    return outputPath_;
}

Task<CorvantaSdkVideoRequestResult> CorvantaSdkVideoRequest::process() { return run(shared_from_this()); }

Task<CorvantaSdkVideoRequestResult>
CorvantaSdkVideoRequest::run(std::shared_ptr<CorvantaSdkVideoRequest> self) {
    Logger::addLog(Event::processRequest, EventMessage::processRequest(self->id));
    Result result = co_await self->requestHander().result();
    const std::lock_guard lock(self->mutex_);
    self->outputPath_ = result.videoURL;
    co_return result;
}

void CorvantaSdkVideoRequest::cancel() {
    Logger::addLog(Event::cancelRequest, EventMessage::cancelRequest(id));
    engine->cancel(*this);
}

CorvantaSdkVideoRequestHandler<CorvantaSdkVideoRequestResult>& CorvantaSdkVideoRequest::requestHander() {
    const std::lock_guard lock(mutex_);
    if (!requestHander_) {
        // The handler lives in this object, and whoever awaits the action holds the object.
        requestHander_.emplace([this] { return engine->process(shared_from_this()); });
    }
    return *requestHander_;
}

std::string_view name(CorvantaSdkVideoRequest::Type type) {
    static constexpr auto names = std::to_array<std::string_view>({"merge", "encode", "concat"});
    return names.at(static_cast<std::size_t>(type));
}

} // namespace corvanta
